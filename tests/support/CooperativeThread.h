// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/threads/Threads.h"

#include <functional>
#include <memory>
#include <utility>

namespace test
{

// A thread that runs a function, from the next yield on; ends with its scope at the latest.
class CooperativeThread
{
public:
    explicit CooperativeThread(std::function<void()> body)
        : body_(std::make_unique<std::function<void()>>(std::move(body)))
    {
        NewThread(kCooperativeThread, Run, body_.get(), 0, 0, nullptr, &id_);
    }
    ~CooperativeThread() { DisposeThread(id_, nullptr, false); }
    CooperativeThread(const CooperativeThread&) = delete;
    CooperativeThread& operator=(const CooperativeThread&) = delete;

    ThreadID Id() const { return id_; }
    bool HasEnded() const
    {
        ThreadState state = 0;
        return GetThreadState(id_, &state) != 0;
    }

private:
    static void* Run(void* body)
    {
        (*static_cast<std::function<void()>*>(body))();
        return nullptr;
    }

    std::unique_ptr<std::function<void()>> body_;
    ThreadID id_ = kNoThreadID;
};

} // namespace test

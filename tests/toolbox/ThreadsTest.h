// SPDX-License-Identifier: MIT
//
// Starting cooperative threads from functions, and what the tests of threads ask of them.
#pragma once

#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"
#include "toolbox/threads/Threads.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace test
{

using Body = std::function<void()>;

inline void* RunBody(void* param)
{
    (*static_cast<Body*>(param))();
    return param;
}

// Each test leaves no thread behind.
class Threads : public testing::Test
{
protected:
    void TearDown() override
    {
        while (CountLiveObjects(kLiveThreads) > 0 && YieldToAnyThread() == noErr) {
        }
    }

    ThreadID Start(Body body, Size stackSize = 0, void** result = nullptr)
    {
        bodies_.push_back(std::make_unique<Body>(std::move(body)));
        ThreadID thread = kNoThreadID;
        EXPECT_EQ(noErr, NewThread(kCooperativeThread, NewThreadEntryUPP(RunBody),
                                   bodies_.back().get(), stackSize, 0, result, &thread));
        return thread;
    }

    // A thread that yields for ever and counts the releases of what its frame owns.
    ThreadID StartOwner(int& released)
    {
        return Start([&released] {
            const std::shared_ptr<void> owned(nullptr, [&released](void*) { ++released; });
            for (;;) {
                YieldToAnyThread();
            }
        });
    }

    std::vector<std::unique_ptr<Body>> bodies_;
    std::string log_;
};

inline ThreadID CurrentThread()
{
    ThreadID thread = kNoThreadID;
    EXPECT_EQ(noErr, GetCurrentThread(&thread));
    return thread;
}

// Touches `bytes` of stack below its caller.
inline void UseStack(size_t bytes)
{
    volatile char page[1024];
    page[0] = 1;
    if (bytes > sizeof page) {
        UseStack(bytes - sizeof page);
    }
    page[1] = page[0]; // or the call above becomes a loop
}

inline bool Exists(ThreadID thread)
{
    ThreadState state = 0;
    return GetThreadState(thread, &state) == noErr;
}

} // namespace test

// SPDX-License-Identifier: MIT
//
// An object's bytes over a source and a clock that the test moves.
#pragma once

#include "tests/viewer/TestFiles.h"
#include "toolbox/threads/Threads.h"
#include "viewer/ObjectBytes.h"
#include "viewer/PageClock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

// A source that has as much as the test gave it.
class FakeSource : public viewer::ByteSource
{
public:
    void Pump(SInt32 end) override { asked = end; }
    SInt32 Received() const override { return static_cast<SInt32>(bytes.size()); }
    bool IsComplete() const override { return complete; }
    SInt32 EstimatedBytes() const override { return 4711; }
    SInt32 Read(void* buffer, SInt32 offset, SInt32 count) override
    {
        std::memcpy(buffer, bytes.data() + offset, static_cast<size_t>(count));
        return count;
    }
    void FailWith(OSErr error)
    {
        Fail({error, "it broke"});
        complete = true;
    }

    std::string bytes;
    bool complete = false;
    SInt32 asked = 0;
};

class TimeThatPasses : public viewer::HostTime
{
public:
    void LetTimePass() override
    {
        ++count;
        action();
    }
    int count = 0;
    std::function<void()> action = [] {};
};

struct Answer {
    OSErr err = -1;
    SInt32 count = -1;
    SInt32 dataSize = -1;
    unsigned char dataComplete = 0xEE;
    std::string bytes;
};

class GetData : public testing::Test
{
protected:
    GetData() { Make(viewer::ArrivalPace()); }

    void Make(viewer::ArrivalPace pace)
    {
        auto made = std::make_unique<FakeSource>();
        source = made.get();
        object = std::make_unique<viewer::ObjectBytes>(std::move(made), pace, time);
    }
    void Give(size_t size) { source->bytes = Pattern(size); }

    Answer Ask(SInt32 offset, SInt32 count)
    {
        Answer answer;
        answer.count = count;
        answer.bytes.resize(static_cast<size_t>(std::max(count, 0)));
        answer.err = object->GetData(answer.bytes.data(), offset, &answer.count, &answer.dataSize,
                                     &answer.dataComplete);
        answer.bytes.resize(static_cast<size_t>(answer.count));
        return answer;
    }

    // Asks on a thread of its own, as plug-ins do. The answer comes when there is one.
    void AskOnThread(SInt32 offset, SInt32 count)
    {
        question = [this, offset, count] { later = Ask(offset, count); };
        const auto run = [](void* self) -> void* {
            static_cast<GetData*>(self)->question();
            return nullptr;
        };
        ThreadID thread = kNoThreadID;
        ASSERT_EQ(
            NewThread(kCooperativeThread, NewThreadEntryUPP(run), this, 0, 0, nullptr, &thread),
            noErr);
    }
    bool HasAnswer() const { return later.err != -1; }

    viewer::PageClock clock;
    TimeThatPasses time;
    FakeSource* source = nullptr;
    std::unique_ptr<viewer::ObjectBytes> object;
    std::function<void()> question;
    Answer later;
};

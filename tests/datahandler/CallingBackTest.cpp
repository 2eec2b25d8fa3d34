// SPDX-License-Identifier: MIT
#include "tests/datahandler/RequestQueuesTest.h"

namespace test
{
namespace
{

class CallingBack : public RequestQueues
{
protected:
    // Counts how deep completion routines are nested and calls `body` in the first one.
    void CallBackOnce(std::function<void()> body)
    {
        onCompletion = [this, body = std::move(body)] {
            ++depth;
            deepest = std::max(deepest, depth);
            if (completions.size() == 1) {
                body();
            }
            --depth;
        };
    }

    // The same with `body` in every one. Stops at the third level, so that a queue processed again
    // fails the test and does not fill the stack.
    void CallBackEveryTime(std::function<void()> body)
    {
        onCompletion = [this, body = std::move(body)] {
            ++depth;
            deepest = std::max(deepest, depth);
            if (depth < 3) {
                body();
            }
            --depth;
        };
    }
    void CallTask() { EXPECT_EQ(Call(kDataHTaskSelect), noErr); }

    int depth = 0;
    int deepest = 0;
};

TEST_F(CallingBack, WithTaskProcessesNoQueueASecondTime)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 0, 100);
    ReadAsync(Place(2), 0, 100);
    CallBackEveryTime([this] { CallTask(); });
    Arrive(100);
    EXPECT_EQ(completions.size(), 3u);
    EXPECT_EQ(deepest, 1);
    EXPECT_FALSE(handler->inCallbacks);
}

TEST_F(CallingBack, WithTaskDoesNotProcessScheduledReadsASecondTime)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 0, 100);
    CallBackEveryTime([this] { CallTask(); });
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{Place(0), 0, noErr}, {Place(1), 0, noErr}}));
    EXPECT_EQ(deepest, 1);
}

TEST_F(CallingBack, WithTaskDoesNotProcessAsynchronousReadsASecondTime)
{
    Open();
    ReadAsync(Place(0), 0, 100);
    ReadAsync(Place(1), 0, 100);
    CallBackEveryTime([this] { CallTask(); });
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{Place(0), 0, noErr}, {Place(1), 0, noErr}}));
    EXPECT_EQ(deepest, 1);
}

TEST_F(CallingBack, FromAFileSizeRequestProcessesNoQueue)
{
    Open();
    wide first = {};
    wide second = {};
    handler->GetFileSizeAsync(&first, Complete, 1);
    handler->GetFileSizeAsync(&second, Complete, 2);
    Schedule(Place(0), 0, 100, 3);
    Spool(*plugin, 100);
    CallBackEveryTime([this] {
        handler->ProcessAsyncFileSizeCallbacks();
        CallTask();
        EXPECT_EQ(Finish(Place(0), false), noErr);
    });
    ArriveCompletely();
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&first), 1, noErr},
                                        {reinterpret_cast<char*>(&second), 2, noErr},
                                        {Place(0), 3, noErr}}));
    EXPECT_EQ(deepest, 1);
    EXPECT_FALSE(handler->inCallbacks);
}

TEST_F(CallingBack, WithFinishDataDoesNothing)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 500, 100);
    CallBackOnce([this] {
        EXPECT_EQ(Finish(Place(1), true), noErr);
        EXPECT_EQ(Finish(Place(2), true), noErr); // not even an error
    });
    Arrive(100);
    EXPECT_EQ(completions.size(), 1u);
    EXPECT_FALSE(IsEmpty(handler->scheduleQueue));
}

TEST_F(CallingBack, WithProgressOnlyTakesNoteOfIt)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 100, 100);
    CallBackOnce([this] { Arrive(100); });
    Arrive(100);
    // The walk under way sees the new size when it gets there.
    EXPECT_EQ(completions, (Completions{{Place(0), 0, noErr}, {Place(1), 0, noErr}}));
    EXPECT_EQ(deepest, 1);
}

TEST_F(CallingBack, WithPollReadDoesNotDisturbTheWalk)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 0, 100);
    Schedule(Place(2), 0, 100);
    CallBackOnce([this] {
        UInt32 count = 0;
        Call(kDataHPollReadSelect, Place(9), &count); // looks through the whole queue
    });
    Arrive(100);
    EXPECT_EQ(completions,
              (Completions{{Place(0), 0, noErr}, {Place(1), 0, noErr}, {Place(2), 0, noErr}}));
}

TEST_F(CallingBack, WithANewRequestQueuesIt)
{
    Open();
    Schedule(Place(0), 0, 100, 1);
    CallBackOnce([this] { Schedule(Place(1), 100, 100, 2); });
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{Place(0), 1, noErr}}));
    Arrive(100);
    EXPECT_EQ(completions.back(), (Completion{Place(1), 2, noErr}));
}

TEST_F(CallingBack, WithAnExceptionLeavesTheRequestAndFreesTheQueues)
{
    Open();
    Schedule(buffer, 0, 100);
    CallBackOnce([] { throw OSErr{ioErr}; });
    EXPECT_EQ(ThrownBy([this] { Arrive(100); }), ioErr);
    EXPECT_FALSE(handler->inCallbacks);
    EXPECT_FALSE(IsEmpty(handler->scheduleQueue));
}

} // namespace
} // namespace test

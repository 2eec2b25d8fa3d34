// SPDX-License-Identifier: MIT
#include "tests/datahandler/RequestQueuesTest.h"
#include "tests/support/CooperativeThread.h"
#include "toolbox/gestalt/Gestalt.h"

#include <deque>

namespace test
{
namespace
{

class SpoolingAhead : public RequestQueues
{
protected:
    // How many bytes Task gets spooled before it returns, of those that another thread brings: a
    // turn each of `portions`, then a thousand a turn. Runs on the thread it is called on.
    SInt32 SpooledByTask(std::deque<SInt32> portions = {})
    {
        const SInt32 before = plugin->bytesSpooled;
        const CooperativeThread bringer([&] {
            for (;;) {
                const SInt32 bytes = portions.empty() ? 1000 : portions.front();
                if (!portions.empty()) {
                    portions.pop_front();
                }
                Spool(*plugin, bytes);
                YieldToAnyThread();
            }
        });
        EXPECT_EQ(Call(kDataHTaskSelect), noErr);
        return plugin->bytesSpooled - before;
    }
};

TEST_F(SpoolingAhead, TaskWaitsFor16KilobytesMore)
{
    OpenForMpeg(500);
    EXPECT_EQ(SpooledByTask(), 17000); // 16384 and what the last turn brought beyond
}

TEST_F(SpoolingAhead, TaskWaitsForNotAByteLessAndNotAByteMore)
{
    OpenForMpeg(500);
    EXPECT_EQ(SpooledByTask({16383, 1}), 16384);
}

TEST_F(SpoolingAhead, TaskWaitsOnTheTaskingThreadToo)
{
    OpenForMpeg(500);
    SInt32 spooled = 0;
    CooperativeThread tasking([&] { spooled = SpooledByTask(); });
    plugin->taskingThread = tasking.Id();
    while (!tasking.HasEnded()) {
        YieldToAnyThread();
    }
    plugin->taskingThread = kNoThreadID;
    EXPECT_EQ(spooled, 17000);
}

TEST_F(SpoolingAhead, TaskDoesNotWaitOnAnotherThread)
{
    OpenForMpeg(500);
    SInt32 spooled = -1;
    CooperativeThread other([&] { spooled = SpooledByTask(); });
    plugin->decodingThread = other.Id();
    while (!other.HasEnded()) {
        YieldToAnyThread();
    }
    EXPECT_EQ(spooled, 0);
}

TEST_F(SpoolingAhead, TaskDoesNotWaitInsideAControllerCall)
{
    OpenForMpeg(500);
    plugin->inControllerCall = true;
    EXPECT_EQ(SpooledByTask(), 0);
}

TEST_F(SpoolingAhead, TaskDoesNotWaitForOtherData)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(SpooledByTask(), 0);
}

TEST_F(SpoolingAhead, TaskDoesNotWaitBeforeVersion5)
{
    SetGestaltValue(gestaltQuickTime, 0x04FFFFFF);
    OpenForMpeg(500);
    EXPECT_EQ(SpooledByTask(), 0);
}

TEST_F(SpoolingAhead, TaskDoesNotWaitOnceLoadingIsComplete)
{
    OpenForMpeg(500);
    handler->LoadComplete(500);
    EXPECT_EQ(SpooledByTask(), 0);
}

TEST_F(SpoolingAhead, TaskDoesNotWaitWithoutAPlugin)
{
    OpenForMpeg(500);
    KillPlugin();
    probe.Forget();
    EXPECT_EQ(Call(kDataHTaskSelect), noErr);
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 0);
}

TEST_F(SpoolingAhead, TaskCompletesScheduledReadsThenAsynchronousOnes)
{
    Open();
    ReadAsync(Place(0), 0, 100);
    Schedule(Place(1), 0, 100);
    Spool(*plugin, 100);
    handler->availableSize = 100; // arrived, but nothing processed
    EXPECT_EQ(Call(kDataHTaskSelect), noErr);
    EXPECT_EQ(completions, (Completions{{Place(1), 0, noErr}, {Place(0), 0, noErr}}));
}

TEST_F(SpoolingAhead, TaskReturnsWhatAnAsynchronousReadFailsWith)
{
    Open();
    ReadAsync(buffer, 0, 100);
    Spool(*plugin, 100);
    handler->availableSize = 100;
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Call(kDataHTaskSelect), ioErr);
}

} // namespace
} // namespace test

// SPDX-License-Identifier: MIT
#include "tests/datahandler/RequestQueuesTest.h"
#include "tests/support/CooperativeThread.h"

namespace test
{
namespace
{

class AsynchronousReads : public RequestQueues
{
};

TEST_F(AsynchronousReads, AnAsynchronousReadOfBytesThatAreThereIsDoneAtOnce)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(ReadAsync(buffer, 400, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 400, 100));
}

TEST_F(AsynchronousReads, AnAsynchronousReadNeedsNoCompletionRoutineForBytesThatAreThere)
{
    Open("video/quicktime", 0, 500);
    const wide offset = {0, 400};
    EXPECT_EQ(Call(kDataHReadAsyncSelect, buffer, 100, &offset, nullptr, 42), noErr);
    EXPECT_TRUE(Holds(buffer, 400, 100));
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Call(kDataHReadAsyncSelect, buffer, 100, &offset, nullptr, 42), ioErr);
}

TEST_F(AsynchronousReads, ADelayedAsynchronousReadForgetsTheReferenceConstant)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(ReadAsync(buffer, 450, 100, 42), noErr);
    EXPECT_TRUE(completions.empty());
    Arrive(49);
    EXPECT_TRUE(completions.empty());
    Arrive(1);
    EXPECT_EQ(completions, (Completions{{buffer, 0, noErr}}));
    EXPECT_TRUE(Holds(buffer, 450, 100));
    EXPECT_TRUE(IsEmpty(handler->readQueue));
}

TEST_F(AsynchronousReads, AnAsynchronousReadWithoutACompletionRoutineIsRefusedWithAnInteger)
{
    Open("video/quicktime", 0, 500);
    const wide offset = {0, 450};
    const auto readingThrows = [&] {
        return IntThrownBy([&] { handler->ReadAsync(buffer, 100, &offset, nullptr, 0); });
    };
    EXPECT_EQ(readingThrows(), notEnoughDataErr);
    EXPECT_EQ(Call(kDataHReadAsyncSelect, buffer, 100, &offset, nullptr, 0), paramErr);
    ArriveCompletely();
    EXPECT_EQ(readingThrows(), eofErr);
    EXPECT_EQ(Call(kDataHReadAsyncSelect, buffer, 100, &offset, nullptr, 0), paramErr);
}

TEST_F(AsynchronousReads, AnAsynchronousReadPastTheFinalEndIsRefused)
{
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    EXPECT_EQ(ReadAsync(buffer, 450, 51), eofErr);
    EXPECT_TRUE(completions.empty());
}

TEST_F(AsynchronousReads, AnAsynchronousReadOfMpegDataIsDoneAtOnceAndWaits)
{
    OpenForMpeg(500);
    const CooperativeThread bringer([this] { Spool(*plugin, 500); });
    EXPECT_EQ(ReadAsync(buffer, 450, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 450, 100));
    EXPECT_TRUE(IsEmpty(handler->readQueue));
}

TEST_F(AsynchronousReads, AnAsynchronousReadOfMpegDataIsCutAtTheFinalEnd)
{
    OpenForMpeg(500);
    ArriveCompletely();
    EXPECT_EQ(ReadAsync(buffer, 450, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 450, 50));
    EXPECT_TRUE(IsUntouched(buffer + 50, 50));
}

TEST_F(AsynchronousReads, AnAsynchronousReadOfMpegDataReturnsItsError)
{
    OpenForMpeg(500);
    SpoolTheEnd(*plugin);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(ReadAsync(buffer, 450, 100, 42), ioErr);
    EXPECT_TRUE(completions.empty());
}

TEST_F(AsynchronousReads, AnAsynchronousReadIsComparedWithoutSignAndWithoutWrapping)
{
    Open("video/quicktime", 0, 500);
    for (const UInt32 offset : {0x80000000u, 0xFFFFFFF0u, 0x7FFFFFFFu}) {
        EXPECT_EQ(ReadAsync(buffer, offset, 100), noErr);
    }
    EXPECT_EQ(ReadAsync(buffer, 0, 0xFFFFFFFF), noErr);
    Arrive(500);
    EXPECT_TRUE(completions.empty()); // all queued
}

TEST_F(AsynchronousReads, AQueuedAsynchronousReadGoesByTheLowWordOfItsOffset)
{
    Open("video/quicktime", 0, 500);
    const wide offset = {1, 450};
    EXPECT_EQ(Call(kDataHReadAsyncSelect, buffer, 100, &offset, Complete, 0), noErr);
    EXPECT_TRUE(completions.empty());
    Arrive(50);
    EXPECT_EQ(completions, (Completions{{buffer, 0, noErr}}));
    EXPECT_TRUE(Holds(buffer, 450, 100));
}

TEST_F(AsynchronousReads, AnAsynchronousReadAtOnceReturnsItsErrorAndCompletesNothing)
{
    Open("video/quicktime", 0, 500);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(ReadAsync(buffer, 400, 100, 42), ioErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_TRUE(IsEmpty(handler->readQueue));
}

TEST_F(AsynchronousReads, AnAsynchronousReadAtOncePassesOnWhatIsNoErrorCode)
{
    Open("video/quicktime", 0, 100);
    PretendArrived(200);
    EXPECT_EQ(ReadAsync(buffer, 150, 10), paramErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_TRUE(IsEmpty(handler->readQueue));
    EXPECT_FALSE(HasWaited());
}

TEST_F(AsynchronousReads, AQueuedAsynchronousReadPassesOnWhatIsNoErrorCode)
{
    Open("video/quicktime", 0, 100);
    ReadAsync(buffer, 150, 10);
    PretendArrived(200);
    EXPECT_EQ(Call(kDataHTaskSelect), paramErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_FALSE(IsEmpty(handler->readQueue));
    EXPECT_FALSE(handler->inCallbacks);
    EXPECT_FALSE(HasWaited());
}

TEST_F(AsynchronousReads, AQueuedAsynchronousReadThatFailsStaysQueued)
{
    Open();
    ReadAsync(buffer, 0, 100);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(ThrownBy([this] { Arrive(100); }), ioErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_FALSE(handler->inCallbacks);
    Arrive(1);
    EXPECT_EQ(completions, (Completions{{buffer, 0, noErr}}));
}

} // namespace
} // namespace test

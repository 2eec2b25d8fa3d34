// SPDX-License-Identifier: MIT
#include "tests/datahandler/DataHandlerTest.h"
#include "tests/support/CooperativeThread.h"
#include "toolbox/gestalt/Gestalt.h"

#include <random>

namespace test
{
namespace
{

class RequestQueues : public DataHandlerTest
{
protected:
    char* Place(int number) { return buffer + 100 * number; }
    bool IsEmpty(CLinkedList& queue)
    {
        queue.ResetToFirst();
        return queue.NextItem() == nullptr;
    }
    ComponentResult Finish(char* place, unsigned char cancel)
    {
        return Call(kDataHFinishDataSelect, place, cancel);
    }
    bool IsUntouched(const char* place, int size)
    {
        return std::count(place, place + size, char{0}) == size;
    }
};

// Scheduled reads -------------------------------------------------------------------------------

TEST_F(RequestQueues, AScheduledReadOfBytesThatAreThereIsDoneAtOnce)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(Schedule(buffer, 400, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 400, 100));
    EXPECT_TRUE(IsEmpty(handler->scheduleQueue));
}

TEST_F(RequestQueues, AScheduledReadWaitsUntilItsLastByteHasArrived)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(Schedule(buffer, 0, 1000, 42), noErr);
    EXPECT_TRUE(completions.empty());
    Arrive(499);
    EXPECT_TRUE(completions.empty());
    Arrive(1);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 0, 1000));
    Arrive(100);
    EXPECT_EQ(completions.size(), 1u);
}

TEST_F(RequestQueues, CarriesAWholePointerAsReferenceConstant)
{
    Open();
    const auto refCon = reinterpret_cast<RefCon>(this);
    Schedule(buffer, 0, 100, refCon);
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{buffer, refCon, noErr}}));
}

TEST_F(RequestQueues, A64BitScheduledReadGoesByItsLowWord)
{
    Open("video/quicktime", 0, 500);
    const wide offset = {1, 400};
    EXPECT_EQ(Call(kDataHScheduleData64Select, buffer, &offset, 100, 42, &schedule, Complete),
              noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 400, 100));
}

TEST_F(RequestQueues, AReadWithoutAScheduleIsDoneAtOnceAndWaits)
{
    Open("video/quicktime", 0, 500);
    const CooperativeThread bringer([this] { Spool(*plugin, 500); });
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 1000, 42, nullptr, Complete), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 0, 1000));
}

TEST_F(RequestQueues, AReadAtOnceTellsItsErrorToTheCompletionRoutine)
{
    Open("video/quicktime", 0, 500);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Schedule(buffer, 0, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, ioErr}}));
}

TEST_F(RequestQueues, AReadAtOnceWithoutACompletionRoutineDropsItsError)
{
    Open("video/quicktime", 0, 500);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 100, 42, &schedule, nullptr), noErr);
    EXPECT_TRUE(IsUntouched(buffer, 100));
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 100, 42, &schedule, nullptr), noErr);
    EXPECT_TRUE(Holds(buffer, 0, 100));
}

TEST_F(RequestQueues, AScheduledReadWithoutACompletionRoutineIsRefusedWithAnInteger)
{
    Open("video/quicktime", 0, 500);
    const auto schedulingThrows = [this] {
        return IntThrownBy(
            [this] { handler->ScheduleData(buffer, 0, 1000, 0, &schedule, nullptr); });
    };
    EXPECT_EQ(schedulingThrows(), notEnoughDataErr);
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 1000, 0, &schedule, nullptr), paramErr);
    ArriveCompletely();
    EXPECT_EQ(schedulingThrows(), eofErr);
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 1000, 0, &schedule, nullptr), paramErr);
}

TEST_F(RequestQueues, AScheduledReadPastTheFinalEndIsRefused)
{
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    EXPECT_EQ(Schedule(buffer, 400, 101), eofErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_EQ(Schedule(buffer, 400, 100), noErr);
    EXPECT_EQ(completions.size(), 1u);
}

TEST_F(RequestQueues, AScheduledReadNear2GiBIsNotWrapped)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(Schedule(buffer, INT32_MAX, 16), noErr);
    EXPECT_EQ(Schedule(buffer, INT32_MAX, INT32_MAX), noErr);
    Arrive(500);
    EXPECT_TRUE(completions.empty());
}

TEST_F(RequestQueues, AQueuedReadTellsItsErrorToTheCompletionRoutine)
{
    Open();
    Schedule(buffer, 0, 100, 42);
    probe.Fail("FSRead", ioErr);
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{buffer, 42, ioErr}}));
    EXPECT_TRUE(IsEmpty(handler->scheduleQueue));
}

TEST_F(RequestQueues, QueuedReadsCompleteInTheOrderTheyWereAskedFor)
{
    Open();
    Schedule(Place(0), 50, 50);
    Schedule(Place(1), 200, 50);
    Schedule(Place(2), 0, 50);
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{Place(0), 0, noErr}, {Place(2), 0, noErr}}));
    Arrive(150);
    EXPECT_EQ(completions.size(), 3u);
    EXPECT_TRUE(Holds(Place(0), 50, 50));
    EXPECT_TRUE(Holds(Place(1), 200, 50));
    EXPECT_TRUE(Holds(Place(2), 0, 50));
}

// Finishing -------------------------------------------------------------------------------------

TEST_F(RequestQueues, CancellingCompletesWithoutReading)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100, 42);
    EXPECT_EQ(Finish(buffer, true), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(IsUntouched(buffer, 100));
    EXPECT_TRUE(IsEmpty(handler->scheduleQueue));
}

TEST_F(RequestQueues, CancellingLeavesOtherRequestsAlone)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 0, 100);
    EXPECT_EQ(Finish(Place(1), true), noErr);
    EXPECT_EQ(completions, (Completions{{Place(1), 0, noErr}}));
    Arrive(100);
    EXPECT_EQ(completions.back(), (Completion{Place(0), 0, noErr}));
}

TEST_F(RequestQueues, FinishingAnUnknownRequestIsABadParameter)
{
    Open();
    Schedule(Place(0), 0, 100);
    EXPECT_EQ(Finish(Place(1), false), paramErr);
    EXPECT_EQ(Finish(Place(1), true), paramErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_FALSE(handler->inCallbacks);
}

TEST_F(RequestQueues, FinishingWaitsForTheBytesOfOneRequest)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 1000, 100, 1);
    Schedule(Place(1), 500, 100, 2);
    const CooperativeThread bringer([this] { Spool(*plugin, 100); });
    EXPECT_EQ(Finish(Place(1), false), noErr);
    EXPECT_EQ(completions, (Completions{{Place(1), 2, noErr}}));
    EXPECT_TRUE(Holds(Place(1), 500, 100));
}

TEST_F(RequestQueues, FinishingTellsTheErrorToTheCompletionRoutine)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100, 42);
    SpoolTheEnd(*plugin); // nobody is told yet
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Finish(buffer, false), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, ioErr}}));
}

TEST_F(RequestQueues, FinishingWithoutAPlacementFinishesAll)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 450, 100, 1);
    Schedule(Place(1), 550, 100, 2);
    const CooperativeThread bringer([this] { Spool(*plugin, 150); });
    EXPECT_EQ(Finish(nullptr, false), noErr);
    EXPECT_EQ(completions, (Completions{{Place(0), 1, noErr}, {Place(1), 2, noErr}}));
    EXPECT_TRUE(Holds(Place(1), 550, 100));
    EXPECT_EQ(Finish(nullptr, false), noErr); // nothing left, and no error
}

TEST_F(RequestQueues, CancellingWithoutAPlacementCancelsAll)
{
    Open();
    Schedule(Place(0), 0, 100, 1);
    Schedule(Place(1), 0, 100, 2);
    EXPECT_EQ(Finish(nullptr, true), noErr);
    EXPECT_EQ(completions, (Completions{{Place(0), 1, noErr}, {Place(1), 2, noErr}}));
    EXPECT_TRUE(IsUntouched(buffer, 200));
}

TEST_F(RequestQueues, FinishingCompletesEveryRequestForAPlacement)
{
    Open();
    Schedule(buffer, 0, 100, 1);
    Schedule(buffer, 100, 100, 2);
    EXPECT_EQ(Finish(buffer, true), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 1, noErr}, {buffer, 2, noErr}}));
}

// Polling ---------------------------------------------------------------------------------------

TEST_F(RequestQueues, PollingCopiesWhatIsThereAndKeepsTheRequest)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100, 42);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), noErr);
    EXPECT_EQ(count, 50u);
    EXPECT_TRUE(Holds(buffer, 450, 50));
    EXPECT_TRUE(completions.empty());
    Arrive(50);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
}

TEST_F(RequestQueues, PollingBeforeTheFirstByteGivesNone)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 500, 100);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), noErr);
    EXPECT_EQ(count, 0u);
}

TEST_F(RequestQueues, PollingNeverGivesMoreThanWasAskedFor)
{
    Open();
    Schedule(buffer, 0, 100);
    Spool(*plugin, 500);
    handler->availableSize = 500; // arrived, but nothing processed
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), noErr);
    EXPECT_EQ(count, 100u);
}

TEST_F(RequestQueues, PollingAnUnknownRequestChangesNothing)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 450, 100);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, Place(1), &count), noErr);
    EXPECT_EQ(count, 77u);
}

TEST_F(RequestQueues, PollingFindsTheFirstRequestForAPlacement)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 490, 100);
    Schedule(Place(1), 480, 100);
    Schedule(Place(1), 470, 100);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, Place(1), &count), noErr);
    EXPECT_EQ(count, 20u);
}

// Asynchronous reads ----------------------------------------------------------------------------

TEST_F(RequestQueues, AnAsynchronousReadOfBytesThatAreThereIsDoneAtOnce)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(ReadAsync(buffer, 400, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 400, 100));
}

TEST_F(RequestQueues, AnAsynchronousReadNeedsNoCompletionRoutineForBytesThatAreThere)
{
    Open("video/quicktime", 0, 500);
    const wide offset = {0, 400};
    EXPECT_EQ(Call(kDataHReadAsyncSelect, buffer, 100, &offset, nullptr, 42), noErr);
    EXPECT_TRUE(Holds(buffer, 400, 100));
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Call(kDataHReadAsyncSelect, buffer, 100, &offset, nullptr, 42), ioErr);
}

TEST_F(RequestQueues, ADelayedAsynchronousReadForgetsTheReferenceConstant)
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

TEST_F(RequestQueues, AnAsynchronousReadWithoutACompletionRoutineIsRefusedWithAnInteger)
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

TEST_F(RequestQueues, AnAsynchronousReadPastTheFinalEndIsRefused)
{
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    EXPECT_EQ(ReadAsync(buffer, 450, 51), eofErr);
    EXPECT_TRUE(completions.empty());
}

TEST_F(RequestQueues, AnAsynchronousReadOfMpegDataIsDoneAtOnceAndWaits)
{
    OpenForMpeg(500);
    const CooperativeThread bringer([this] { Spool(*plugin, 500); });
    EXPECT_EQ(ReadAsync(buffer, 450, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 450, 100));
    EXPECT_TRUE(IsEmpty(handler->readQueue));
}

TEST_F(RequestQueues, AnAsynchronousReadOfMpegDataReturnsItsError)
{
    OpenForMpeg(500);
    SpoolTheEnd(*plugin);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(ReadAsync(buffer, 450, 100, 42), ioErr);
    EXPECT_TRUE(completions.empty());
}

TEST_F(RequestQueues, AnAsynchronousReadIsComparedWithoutSignAndWithoutWrapping)
{
    Open("video/quicktime", 0, 500);
    for (const UInt32 offset : {0x80000000u, 0xFFFFFFF0u, 0x7FFFFFFFu}) {
        EXPECT_EQ(ReadAsync(buffer, offset, 100), noErr);
    }
    EXPECT_EQ(ReadAsync(buffer, 0, 0xFFFFFFFF), noErr);
    Arrive(500);
    EXPECT_TRUE(completions.empty()); // all queued
}

TEST_F(RequestQueues, AQueuedAsynchronousReadThatFailsStaysQueued)
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

// Asynchronous file size --------------------------------------------------------------------------

TEST_F(RequestQueues, TheFileSizeIsToldAtOnceWhenItIsKnown)
{
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    wide size = {1, 1};
    handler->GetFileSizeAsync(&size, Complete, 42);
    EXPECT_EQ(size.hi, 0);
    EXPECT_EQ(size.lo, 500u);
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&size), 42, noErr}}));
    size = {1, 1};
    handler->GetFileSizeAsync(&size, nullptr, 42);
    EXPECT_EQ(size.lo, 500u);
}

TEST_F(RequestQueues, CompletionAnswersEveryRequestForTheFileSize)
{
    Open("video/quicktime", 0, 500);
    wide first = {1, 1};
    wide second = {1, 1};
    handler->GetFileSizeAsync(&first, Complete, 1);
    handler->GetFileSizeAsync(&second, Complete, 2);
    EXPECT_EQ(first.hi, 0);
    EXPECT_EQ(first.lo, 0u);
    Arrive(100);
    EXPECT_TRUE(completions.empty());
    ArriveCompletely();
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&first), 1, noErr},
                                        {reinterpret_cast<char*>(&second), 2, noErr}}));
    EXPECT_EQ(first.lo, 600u);
    EXPECT_EQ(second.lo, 600u);
    EXPECT_EQ(second.hi, 0);
    EXPECT_TRUE(IsEmpty(handler->fileSizeQueue));
}

TEST_F(RequestQueues, AFileSizeProcessedBeforeTheEndIsWhatHasArrived)
{
    Open("video/quicktime", 0, 500);
    wide size = {1, 1};
    handler->GetFileSizeAsync(&size, Complete, 1);
    handler->ProcessAsyncFileSizeCallbacks();
    EXPECT_EQ(size.lo, 500u);
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&size), 1, notEnoughDataErr}}));
}

TEST_F(RequestQueues, TheFileSizeBeforeTheEndNeedsACompletionRoutine)
{
    Open("video/quicktime", 0, 500);
    wide size = {1, 1};
    EXPECT_EQ(ThrownBy([&] { handler->GetFileSizeAsync(&size, nullptr, 0); }), notEnoughDataErr);
    EXPECT_EQ(size.hi, 0);
    EXPECT_EQ(size.lo, 0u);
}

TEST_F(RequestQueues, TheFileSizeCannotBeAskedForBeforeVersion5)
{
    SetGestaltValue(gestaltQuickTime, 0x04FFFFFF);
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    wide size = {1, 1};
    EXPECT_EQ(ThrownBy([&] { handler->GetFileSizeAsync(&size, Complete, 0); }), -32766);
    EXPECT_EQ(size.hi, 1);
}

// Events ----------------------------------------------------------------------------------------

TEST_F(RequestQueues, ProgressCompletesAsynchronousReadsFirst)
{
    Open();
    Schedule(Place(0), 0, 100);
    ReadAsync(Place(1), 0, 100);
    Arrive(100);
    EXPECT_EQ(handler->availableSize, 100);
    EXPECT_FALSE(handler->loadComplete);
    EXPECT_EQ(completions, (Completions{{Place(1), 0, noErr}, {Place(0), 0, noErr}}));
}

TEST_F(RequestQueues, CompletionTellsSizesThenCompletesReads)
{
    Open();
    wide size = {};
    Schedule(Place(0), 0, 100);
    ReadAsync(Place(1), 0, 100);
    handler->GetFileSizeAsync(&size, Complete, 0);
    Spool(*plugin, 100);
    ArriveCompletely();
    EXPECT_EQ(handler->availableSize, 100);
    EXPECT_EQ(handler->finalSize, 100);
    EXPECT_TRUE(handler->loadComplete);
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&size), 0, noErr},
                                        {Place(1), 0, noErr},
                                        {Place(0), 0, noErr}}));
}

TEST_F(RequestQueues, AQueuedReadPastTheFinalEndIsNeverCompletedByItself)
{
    Open();
    Schedule(buffer, 50, 100);
    Spool(*plugin, 100);
    ArriveCompletely();
    Call(kDataHTaskSelect);
    EXPECT_TRUE(completions.empty());
    EXPECT_EQ(Finish(buffer, true), noErr);
    EXPECT_EQ(completions.size(), 1u);
}

TEST_F(RequestQueues, AfterThePluginsDeathReadsCopyNothingAndLaterOnesStayQueued)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 450, 100);
    KillPlugin();
    EXPECT_EQ(handler->moviePlugin, nullptr);
    EXPECT_EQ(Schedule(Place(1), 0, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{Place(1), 42, noErr}}));
    EXPECT_TRUE(IsUntouched(Place(1), 100));
    EXPECT_EQ(Call(kDataHTaskSelect), noErr);
    EXPECT_EQ(completions.size(), 1u);
    EXPECT_FALSE(IsEmpty(handler->scheduleQueue));
    Close();
    EXPECT_EQ(completions.size(), 1u);
}

TEST_F(RequestQueues, AfterThePluginsDeathPollingCopiesNothing)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100);
    KillPlugin();
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), noErr);
    EXPECT_EQ(count, 50u);
    EXPECT_TRUE(IsUntouched(buffer, 100));
}

TEST_F(RequestQueues, RemovingCompletesNothing)
{
    Open();
    wide size = {};
    Schedule(buffer, 0, 100);
    ReadAsync(buffer, 0, 100);
    handler->GetFileSizeAsync(&size, Complete, 0);
    handler->RemoveScheduleDataCallbacks();
    handler->RemoveAsyncReadCallbacks();
    handler->RemoveAsyncFileSizeCallbacks();
    Spool(*plugin, 100);
    ArriveCompletely();
    EXPECT_TRUE(completions.empty());
}

// Completion routines that call back --------------------------------------------------------------

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

    int depth = 0;
    int deepest = 0;
};

TEST_F(CallingBack, WithTaskProcessesNoQueueASecondTime)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 0, 100);
    ReadAsync(Place(2), 0, 100);
    CallBackOnce([this] { EXPECT_EQ(Call(kDataHTaskSelect), noErr); });
    Arrive(100);
    EXPECT_EQ(completions.size(), 3u);
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

// Task ------------------------------------------------------------------------------------------

class SpoolingAhead : public RequestQueues
{
protected:
    // How many bytes Task gets spooled before it returns, of those that another thread brings at
    // a thousand a turn. Runs on the thread it is called on.
    SInt32 SpooledByTask()
    {
        const SInt32 before = plugin->bytesSpooled;
        const CooperativeThread bringer([this] {
            for (;;) {
                Spool(*plugin, 1000);
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

// Every read is completed once and with its bytes, however they arrive
// ------------------------------

class ArrivalInAnyOrder : public RequestQueues, public testing::WithParamInterface<UInt32>
{
};

TEST_P(ArrivalInAnyOrder, CompletesEveryReadOnceWithItsBytes)
{
    std::mt19937 random(GetParam());
    const auto upTo = [&](int most) { return static_cast<SInt32>(random() % unsigned(most + 1)); };
    struct Read {
        SInt32 offset;
        SInt32 size;
    };
    constexpr int kReads = 40;
    constexpr SInt32 kTotal = 3000;
    std::vector<Read> reads;
    Open();
    while (plugin->bytesSpooled < kTotal) {
        if (upTo(1) != 0 && static_cast<int>(reads.size()) < kReads) {
            const SInt32 size = 1 + upTo(99);
            const Read read = {upTo(kTotal - size), size};
            char* const place = Place(static_cast<int>(reads.size()));
            reads.push_back(read);
            if (upTo(1) != 0) {
                ASSERT_EQ(Schedule(place, read.offset, read.size), noErr);
            } else {
                ASSERT_EQ(ReadAsync(place, static_cast<UInt32>(read.offset),
                                    static_cast<UInt32>(read.size)),
                          noErr);
            }
        } else {
            Arrive(std::min(1 + upTo(400), kTotal - plugin->bytesSpooled));
        }
        const auto arrived = std::count_if(reads.begin(), reads.end(), [this](const Read& read) {
            return read.offset + read.size <= plugin->bytesSpooled;
        });
        ASSERT_EQ(completions.size(), static_cast<size_t>(arrived));
    }
    ArriveCompletely();
    ASSERT_EQ(completions.size(), reads.size());
    for (const Completion& completion : completions) {
        const auto number = (completion.request - buffer) / 100;
        const Read& read = reads[static_cast<size_t>(number)];
        EXPECT_EQ(completion.err, noErr);
        EXPECT_TRUE(Holds(completion.request, read.offset, read.size));
        EXPECT_EQ(std::count_if(
                      completions.begin(), completions.end(),
                      [&](const Completion& other) { return other.request == completion.request; }),
                  1);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ArrivalInAnyOrder, testing::Range(1u, 31u));

} // namespace
} // namespace test

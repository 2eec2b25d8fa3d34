// SPDX-License-Identifier: MIT
#include "tests/datahandler/RequestQueuesTest.h"
#include "tests/support/CooperativeThread.h"

namespace test
{
namespace
{

class ScheduledReads : public RequestQueues
{
};

TEST_F(ScheduledReads, AScheduledReadOfBytesThatAreThereIsDoneAtOnce)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(Schedule(buffer, 400, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 400, 100));
    EXPECT_TRUE(IsEmpty(handler->scheduleQueue));
}

TEST_F(ScheduledReads, AScheduledReadWaitsUntilItsLastByteHasArrived)
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

TEST_F(ScheduledReads, TheCompletionRoutineIsCalledAsTheToolboxWantsIt)
{
    Open();
    Schedule(buffer, 0, 100);
    Arrive(100);
    EXPECT_EQ(completions.size(), 1u);
    EXPECT_EQ(probe.Count("InvokeDataHCompletionUPP"), 1);
}

TEST_F(ScheduledReads, CarriesAWholePointerAsReferenceConstant)
{
    Open();
    const auto refCon = reinterpret_cast<RefCon>(this);
    Schedule(buffer, 0, 100, refCon);
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{buffer, refCon, noErr}}));
}

TEST_F(ScheduledReads, A64BitScheduledReadGoesByItsLowWord)
{
    Open("video/quicktime", 0, 500);
    const wide offset = {1, 400};
    EXPECT_EQ(Call(kDataHScheduleData64Select, buffer, &offset, 100, 42, &schedule, Complete),
              noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 400, 100));
}

TEST_F(ScheduledReads, AReadWithoutAScheduleIsDoneAtOnceAndWaits)
{
    Open("video/quicktime", 0, 500);
    const CooperativeThread bringer([this] { Spool(*plugin, 500); });
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 1000, 42, nullptr, Complete), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 0, 1000));
}

TEST_F(ScheduledReads, AReadAtOnceTellsItsErrorToTheCompletionRoutine)
{
    Open("video/quicktime", 0, 500);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Schedule(buffer, 0, 100, 42), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, ioErr}}));
}

TEST_F(ScheduledReads, AReadAtOnceWithoutACompletionRoutineDropsItsError)
{
    Open("video/quicktime", 0, 500);
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 100, 42, &schedule, nullptr), noErr);
    EXPECT_TRUE(IsUntouched(buffer, 100));
    EXPECT_EQ(Call(kDataHScheduleDataSelect, buffer, 0, 100, 42, &schedule, nullptr), noErr);
    EXPECT_TRUE(Holds(buffer, 0, 100));
}

TEST_F(ScheduledReads, AScheduledReadWithoutACompletionRoutineIsRefusedWithAnInteger)
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

TEST_F(ScheduledReads, AScheduledReadPastTheFinalEndIsRefused)
{
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    EXPECT_EQ(Schedule(buffer, 400, 101), eofErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_EQ(Schedule(buffer, 400, 100), noErr);
    EXPECT_EQ(completions.size(), 1u);
}

TEST_F(ScheduledReads, AScheduledReadNear2GiBIsNotWrapped)
{
    Open("video/quicktime", 0, 500);
    EXPECT_EQ(Schedule(buffer, INT32_MAX, 16), noErr);
    EXPECT_EQ(Schedule(buffer, INT32_MAX, INT32_MAX), noErr);
    Arrive(500);
    EXPECT_TRUE(completions.empty());
}

TEST_F(ScheduledReads, AQueuedReadTellsItsErrorToTheCompletionRoutine)
{
    Open();
    Schedule(buffer, 0, 100, 42);
    probe.Fail("FSRead", ioErr);
    Arrive(100);
    EXPECT_EQ(completions, (Completions{{buffer, 42, ioErr}}));
    EXPECT_TRUE(IsEmpty(handler->scheduleQueue));
}

TEST_F(ScheduledReads, AQueuedReadPassesOnWhatIsNoErrorCode)
{
    Open("video/quicktime", 0, 100);
    Schedule(buffer, 150, 10);
    PretendArrived(200);
    EXPECT_EQ(Call(kDataHTaskSelect), paramErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_FALSE(IsEmpty(handler->scheduleQueue));
    EXPECT_FALSE(handler->inCallbacks);
    EXPECT_FALSE(HasWaited());
}

TEST_F(ScheduledReads, QueuedReadsCompleteInTheOrderTheyWereAskedFor)
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

TEST_F(ScheduledReads, CancellingCompletesWithoutReading)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100, 42);
    EXPECT_EQ(Finish(buffer, true), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(IsUntouched(buffer, 100));
    EXPECT_TRUE(IsEmpty(handler->scheduleQueue));
}

TEST_F(ScheduledReads, CancellingLeavesOtherRequestsAlone)
{
    Open();
    Schedule(Place(0), 0, 100);
    Schedule(Place(1), 0, 100);
    EXPECT_EQ(Finish(Place(1), true), noErr);
    EXPECT_EQ(completions, (Completions{{Place(1), 0, noErr}}));
    Arrive(100);
    EXPECT_EQ(completions.back(), (Completion{Place(0), 0, noErr}));
}

TEST_F(ScheduledReads, FinishingAnUnknownRequestIsABadParameter)
{
    Open();
    Schedule(Place(0), 0, 100);
    EXPECT_EQ(Finish(Place(1), false), paramErr);
    EXPECT_EQ(Finish(Place(1), true), paramErr);
    EXPECT_TRUE(completions.empty());
    EXPECT_FALSE(handler->inCallbacks);
}

TEST_F(ScheduledReads, FinishingWaitsForTheBytesOfOneRequest)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 1000, 100, 1);
    Schedule(Place(1), 500, 100, 2);
    const CooperativeThread bringer([this] { Spool(*plugin, 100); });
    EXPECT_EQ(Finish(Place(1), false), noErr);
    EXPECT_EQ(completions, (Completions{{Place(1), 2, noErr}}));
    EXPECT_TRUE(Holds(Place(1), 500, 100));
}

TEST_F(ScheduledReads, ProcessingOneRequestWaitsForItsBytesAlsoWithoutForce)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100, 42);
    const CooperativeThread bringer([this] { Spool(*plugin, 100); });
    handler->ProcessScheduleDataCallbacks(buffer, false, false);
    EXPECT_EQ(completions, (Completions{{buffer, 42, noErr}}));
    EXPECT_TRUE(Holds(buffer, 450, 100));
}

TEST_F(ScheduledReads, FinishingTellsTheErrorToTheCompletionRoutine)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100, 42);
    SpoolTheEnd(*plugin); // nobody is told yet
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(Finish(buffer, false), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 42, ioErr}}));
}

TEST_F(ScheduledReads, FinishingWithoutAPlacementFinishesAll)
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

TEST_F(ScheduledReads, CancellingWithoutAPlacementCancelsAll)
{
    Open();
    Schedule(Place(0), 0, 100, 1);
    Schedule(Place(1), 0, 100, 2);
    EXPECT_EQ(Finish(nullptr, true), noErr);
    EXPECT_EQ(completions, (Completions{{Place(0), 1, noErr}, {Place(1), 2, noErr}}));
    EXPECT_TRUE(IsUntouched(buffer, 200));
}

TEST_F(ScheduledReads, FinishingCompletesEveryRequestForAPlacement)
{
    Open();
    Schedule(buffer, 0, 100, 1);
    Schedule(buffer, 100, 100, 2);
    EXPECT_EQ(Finish(buffer, true), noErr);
    EXPECT_EQ(completions, (Completions{{buffer, 1, noErr}, {buffer, 2, noErr}}));
}

// Polling ---------------------------------------------------------------------------------------

TEST_F(ScheduledReads, PollingCopiesWhatIsThereAndKeepsTheRequest)
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

TEST_F(ScheduledReads, PollingSucceedsAndCopiesNothingOnceThePluginHasDied)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 450, 100);
    KillPlugin();
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), noErr);
    EXPECT_EQ(count, 50u); // as it was asked for
    EXPECT_TRUE(IsUntouched(buffer, 100));
}

TEST_F(ScheduledReads, PollingNeverWaits)
{
    Open("video/quicktime", 0, 100);
    Schedule(buffer, 50, 100);
    PretendArrived(200);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), paramErr);
    EXPECT_FALSE(HasWaited());
}

TEST_F(ScheduledReads, PollingBeforeTheFirstByteGivesNone)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 500, 100);
    Schedule(Place(1), 600, 100);
    for (char* const place : {Place(0), Place(1)}) {
        UInt32 count = 77;
        EXPECT_EQ(Call(kDataHPollReadSelect, place, &count), noErr);
        EXPECT_EQ(count, 0u);
    }
}

TEST_F(ScheduledReads, PollingBeforeTheFirstByteReadsNothing)
{
    Open("video/quicktime", 0, 500);
    Schedule(buffer, 500, 100);
    probe.Fail("FSpOpenDF", ioErr);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), noErr);
    EXPECT_EQ(count, 0u);
}

TEST_F(ScheduledReads, PollingNeverGivesMoreThanWasAskedFor)
{
    Open();
    Schedule(buffer, 0, 100);
    Spool(*plugin, 500);
    handler->availableSize = 500; // arrived, but nothing processed
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, buffer, &count), noErr);
    EXPECT_EQ(count, 100u);
}

TEST_F(ScheduledReads, PollingAnUnknownRequestChangesNothing)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 450, 100);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, Place(1), &count), noErr);
    EXPECT_EQ(count, 77u);
}

TEST_F(ScheduledReads, PollingFindsTheFirstRequestForAPlacement)
{
    Open("video/quicktime", 0, 500);
    Schedule(Place(0), 490, 100);
    Schedule(Place(1), 480, 100);
    Schedule(Place(1), 470, 100);
    UInt32 count = 77;
    EXPECT_EQ(Call(kDataHPollReadSelect, Place(1), &count), noErr);
    EXPECT_EQ(count, 20u);
}

} // namespace
} // namespace test

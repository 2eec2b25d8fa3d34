// SPDX-License-Identifier: MIT
#include "src/plugin/VornPluginABI.h"
#include "tests/viewer/GetDataFixture.h"
#include "viewer/BundleCall.h"

namespace
{

using viewer::ArrivalPace;
using viewer::BundleCall;

TEST_F(GetData, HandsOutTheBytesAtTheOffset)
{
    Give(10'000);
    const Answer answer = Ask(5000, 100);
    EXPECT_EQ(answer.err, noErr);
    EXPECT_EQ(answer.bytes, Pattern(10'000).substr(5000, 100));
    EXPECT_EQ(answer.dataSize, 10'000);
    EXPECT_EQ(answer.dataComplete, 0);
}

TEST_F(GetData, YieldsBeforeItHandsOutBytes)
{
    Give(100);
    AskOnThread(0, 10);
    YieldToAnyThread();
    EXPECT_FALSE(HasAnswer());
    YieldToAnyThread();
    EXPECT_TRUE(HasAnswer());
}

TEST_F(GetData, ASmallRequestWaitsForAllOfIt)
{
    Give(4095);
    AskOnThread(0, 4096);
    for (int i = 0; i < 5; ++i) {
        YieldToAnyThread();
    }
    ASSERT_FALSE(HasAnswer());
    Give(4096);
    YieldToAnyThread();
    EXPECT_EQ(later.err, noErr);
    EXPECT_EQ(later.count, 4096);
}

TEST_F(GetData, ASmallRequestWaitsForTheEnd)
{
    Give(100);
    AskOnThread(0, 4096);
    YieldToAnyThread();
    YieldToAnyThread();
    ASSERT_FALSE(HasAnswer());
    source->complete = true;
    YieldToAnyThread();
    EXPECT_EQ(later.err, noErr);
    EXPECT_EQ(later.count, 100);
    EXPECT_EQ(later.dataSize, 100);
    EXPECT_EQ(later.dataComplete, 1);
}

TEST_F(GetData, ALargeRequestTakesWhatThereIs)
{
    Give(1);
    const Answer answer = Ask(0, 4097);
    EXPECT_EQ(answer.err, noErr);
    EXPECT_EQ(answer.count, 1);
}

TEST_F(GetData, ALargeRequestWaitsUntilThereIsAnything)
{
    Give(50);
    AskOnThread(50, 16384);
    YieldToAnyThread();
    YieldToAnyThread();
    ASSERT_FALSE(HasAnswer());
    Give(51);
    YieldToAnyThread();
    EXPECT_EQ(later.count, 1);
}

TEST_F(GetData, ALargeRequestTakesInAllThatItAsksFor)
{
    Give(1);
    Ask(0, 16384);
    EXPECT_EQ(source->asked, 16384);
}

TEST_F(GetData, TheEndIsAnsweredByACountOf0)
{
    Give(100);
    source->complete = true;
    const Answer answer = Ask(100, 16384);
    EXPECT_EQ(answer.err, kDataNotAvailableErr);
    EXPECT_EQ(answer.count, 0);
    EXPECT_EQ(answer.dataSize, 100);
    EXPECT_EQ(answer.dataComplete, 1);
}

TEST_F(GetData, AFailureOfTheSourceIsAnsweredLikeTheEnd)
{
    Give(100);
    source->FailWith(ioErr);
    EXPECT_EQ(Ask(0, 16384).count, 100);
    const Answer answer = Ask(100, 16384);
    EXPECT_EQ(answer.err, kDataNotAvailableErr);
    EXPECT_EQ(answer.count, 0);
    EXPECT_EQ(object->Failure().error, ioErr);
    EXPECT_FALSE(object->IsComplete());
}

TEST_F(GetData, CancellingIsAnsweredLikeTheEnd)
{
    Give(100);
    object->Cancel();
    const Answer answer = Ask(0, 10);
    EXPECT_EQ(answer.err, kDataNotAvailableErr);
    EXPECT_EQ(answer.count, 0);
    EXPECT_EQ(answer.dataComplete, 1);
}

TEST_F(GetData, CancellingEndsAWait)
{
    AskOnThread(0, 10);
    YieldToAnyThread();
    object->Cancel();
    YieldToAnyThread();
    EXPECT_EQ(later.err, kDataNotAvailableErr);
}

TEST_F(GetData, StartingAnewHandsOutEverythingAgain)
{
    Give(100);
    Ask(0, 100);
    object->Cancel();
    object->StartAnew();
    EXPECT_EQ(object->HandedOut(), 0);
    EXPECT_EQ(Ask(0, 100).count, 100);
}

TEST_F(GetData, ANullBufferOnlyRefreshes)
{
    Give(100);
    SInt32 count = 0;
    SInt32 dataSize = -1;
    unsigned char complete = 1;
    EXPECT_EQ(object->GetData(nullptr, -4, &count, &dataSize, &complete), noErr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(dataSize, 100);
    EXPECT_EQ(complete, 0);
    EXPECT_EQ(object->HandedOut(), 0);
}

TEST_F(GetData, ACountOf0WaitsForNothing)
{
    const Answer answer = Ask(0, 0);
    EXPECT_EQ(answer.err, noErr);
    EXPECT_EQ(answer.count, 0);
}

TEST_F(GetData, ANegativeOffsetHasNoBytes)
{
    Give(100);
    source->complete = true;
    EXPECT_EQ(Ask(-5, 10).err, kDataNotAvailableErr);
}

TEST_F(GetData, ARequestBeyondTheLargestObjectIsCutNotWrapped)
{
    Give(100);
    source->complete = true;
    EXPECT_EQ(Ask(INT32_MAX - 5, 16384).err, kDataNotAvailableErr);
}

TEST_F(GetData, CountsTheHighestByteHandedOut)
{
    Give(10'000);
    source->complete = true;
    Ask(0, 4096);
    Ask(0, 10);
    EXPECT_EQ(object->HandedOut(), 4096);
    Ask(4096, 16384);
    EXPECT_EQ(object->HandedOut(), 10'000);
    EXPECT_TRUE(object->IsComplete());
}

TEST_F(GetData, TheEstimateIsTheSources)
{
    EXPECT_EQ(object->EstimatedBytes(), 4711);
}

TEST_F(GetData, WithAPaceOnlyWhatHasArrivedIsThere)
{
    Make(ArrivalPace(1000));
    Give(5000);
    source->complete = true;
    clock.AdvanceTo(2'000'000);
    const Answer answer = Ask(0, 16384);
    EXPECT_EQ(answer.count, 2000);
    EXPECT_EQ(answer.dataSize, 2000);
    EXPECT_EQ(answer.dataComplete, 0);
    clock.AdvanceTo(5'000'000);
    EXPECT_EQ(Ask(2000, 16384).dataComplete, 1);
}

TEST_F(GetData, LetsTimePassWhileTheApplicationIsInsideTheBundle)
{
    time.action = [this] { Give(time.count == 3 ? 10 : 0); };
    const BundleCall call(nullptr);
    EXPECT_EQ(Ask(0, 10).count, 10);
    EXPECT_EQ(time.count, 3);
}

TEST_F(GetData, LeavesTimeToTheEventLoopOtherwise)
{
    AskOnThread(0, 10);
    YieldToAnyThread();
    YieldToAnyThread();
    EXPECT_EQ(time.count, 0);
    object->Cancel();
    YieldToAnyThread();
}

TEST_F(GetData, APeekCountsNothing)
{
    Give(100);
    std::string start(512, '\0');
    EXPECT_EQ(object->Peek(start.data(), 512), 100);
    EXPECT_EQ(object->HandedOut(), 0);
}

} // namespace

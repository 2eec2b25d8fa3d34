// SPDX-License-Identifier: MIT
#include "tests/datahandler/RequestQueuesTest.h"

#include <random>

namespace test
{
namespace
{

class LoadEvents : public RequestQueues
{
};

TEST_F(LoadEvents, ProgressCompletesAsynchronousReadsFirst)
{
    Open();
    Schedule(Place(0), 0, 100);
    ReadAsync(Place(1), 0, 100);
    Arrive(100);
    EXPECT_EQ(handler->availableSize, 100);
    EXPECT_FALSE(handler->loadComplete);
    EXPECT_EQ(completions, (Completions{{Place(1), 0, noErr}, {Place(0), 0, noErr}}));
}

TEST_F(LoadEvents, CompletionTellsSizesThenCompletesReads)
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

TEST_F(LoadEvents, AQueuedReadPastTheFinalEndIsNeverCompletedByItself)
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

TEST_F(LoadEvents, AfterThePluginsDeathReadsCopyNothingAndLaterOnesStayQueued)
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

TEST_F(LoadEvents, RemovingCompletesNothing)
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

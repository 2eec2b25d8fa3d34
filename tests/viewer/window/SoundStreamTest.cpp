// SPDX-License-Identifier: MIT
#include "viewer/window/SoundStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace
{

using viewer::SoundStream;
using Sums = std::vector<SInt32>;

// Sound of full loudness, so that every step in it is a click.
constexpr SInt16 kLoud = 20000;
constexpr SInt32 kRate = 10000;
constexpr SInt64 kFrameTime = 100; // microseconds
constexpr SInt32 kPiece = 300;     // 30 milliseconds
constexpr size_t kPortion = 200;
constexpr SInt64 kPortionTime = 20'000;
constexpr SInt64 kStart = 1'000'000;

class SoundStreamTest : public testing::Test
{
protected:
    // The next pieces that follow without a gap.
    void AddPieces(int count, SInt16 level = kLoud)
    {
        const std::vector<SInt16> frames(kPiece, level);
        for (int i = 0; i < count; ++i) {
            stream.Add(frames.data(), kPiece, time);
            time += kPiece * kFrameTime;
        }
    }
    // What the device gets, portion after portion.
    void Play(int portions)
    {
        for (int i = 0; i < portions; ++i, heardAt += kPortionTime) {
            Sums sums(kPortion);
            stream.Mix(sums.data(), kPortion, heardAt);
            heard.insert(heard.end(), sums.begin(), sums.end());
        }
    }
    SInt32 LargestStep() const
    {
        SInt32 step = std::abs(heard.front());
        for (size_t i = 1; i < heard.size(); ++i) {
            step = std::max(step, std::abs(heard[i] - heard[i - 1]));
        }
        return step;
    }
    // A ramp's steps.
    SInt32 LargestGentleStep() const
    {
        return kLoud / static_cast<SInt32>(stream.RampFrames()) + 2;
    }
    // The number of the first frame that is heard.
    ptrdiff_t FirstHeard() const
    {
        return std::find_if(heard.begin(), heard.end(), [](SInt32 sum) { return sum != 0; }) -
               heard.begin();
    }

    SoundStream stream{{kRate, 1}, {kRate, 1}};
    SInt64 time = kStart;    // when the next piece is due
    SInt64 heardAt = kStart; // when the next portion is heard
    Sums heard;
};

TEST_F(SoundStreamTest, IsSilentBeforeAnythingComes)
{
    Play(2);
    EXPECT_EQ(heard, Sums(2 * kPortion));
    EXPECT_EQ(stream.DueTime(), std::nullopt);
}

TEST_F(SoundStreamTest, SoundsWhenItIsDue)
{
    time += 33'300;
    AddPieces(5);
    Play(4);
    EXPECT_EQ(FirstHeard(), 333 + 1); // the ramp's first frame is silent
}

TEST_F(SoundStreamTest, WhatComesTooLateBeginsWhereItWouldBeByThen)
{
    heardAt += 50'000;
    AddPieces(5);
    Play(1);
    EXPECT_EQ(stream.DueTime(), heardAt);
}

TEST_F(SoundStreamTest, WhatIsLateByVeryLittleIsHeardAsAWhole)
{
    heardAt += 4'000;
    AddPieces(5);
    Play(1);
    EXPECT_EQ(stream.DueTime(), heardAt - 4'000);
}

TEST_F(SoundStreamTest, WhatIsMuchTooLateIsNotHeard)
{
    AddPieces(5);
    heardAt += 1'000'000;
    Play(1);
    EXPECT_TRUE(stream.IsSilent());
    EXPECT_EQ(heard, Sums(kPortion));
}

TEST_F(SoundStreamTest, ComesBackToItsTimeAfterTheDeviceStoodStill)
{
    AddPieces(20);
    Play(2);
    heardAt += 100'000;
    Play(2);
    EXPECT_EQ(stream.DueTime(), heardAt);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, WaitsForItsTimeAfterTheDeviceHurried)
{
    AddPieces(20);
    Play(4);
    heardAt -= 60'000;
    Play(6);
    EXPECT_EQ(stream.DueTime(), heardAt);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, LeavesSmallDeviationsToTheClock)
{
    AddPieces(20);
    Play(2);
    heardAt += 10'000;
    Play(2);
    EXPECT_EQ(stream.DueTime(), heardAt - 10'000);
}

TEST_F(SoundStreamTest, BeginsAndEndsWithoutAClick)
{
    AddPieces(10);
    Play(20);
    EXPECT_EQ(*std::max_element(heard.begin(), heard.end()), kLoud);
    EXPECT_EQ(heard.back(), 0);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, NothingIsMissingWhilePiecesFollowInTime)
{
    AddPieces(4);
    for (int i = 0; i < 20; ++i) { // two pieces are as long as three portions
        AddPieces(2);
        Play(3);
    }
    const auto first = heard.begin() + static_cast<ptrdiff_t>(stream.RampFrames());
    EXPECT_TRUE(std::all_of(first, heard.end(), [](SInt32 sum) { return sum == kLoud; }));
}

TEST_F(SoundStreamTest, AJumpToElsewhereDoesNotClick)
{
    AddPieces(6);
    Play(2);
    time += 12'345;
    AddPieces(2, -kLoud);
    Play(15);
    EXPECT_EQ(*std::min_element(heard.begin(), heard.end()), -kLoud);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, WhatIsRecalledIsSilentARampLater)
{
    AddPieces(20);
    Play(3);
    stream.Recall(kStart);
    Play(1);
    EXPECT_TRUE(stream.IsSilent());
    const auto silence = heard.begin() + 3 * kPortion + static_cast<ptrdiff_t>(stream.RampFrames());
    EXPECT_TRUE(std::all_of(silence, heard.end(), [](SInt32 sum) { return sum == 0; }));
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, WhatIsDueBeforeTheRecallIsStillHeard)
{
    AddPieces(20);
    Play(1);
    stream.Recall(kStart + 3 * kPortionTime);
    Play(2);
    EXPECT_NE(heard[3 * kPortion - 2], 0);
    Play(1);
    EXPECT_TRUE(stream.IsSilent());
}

TEST_F(SoundStreamTest, WhatIsRecalledBeforeItSoundsIsNeverHeard)
{
    time += 100'000;
    AddPieces(5);
    stream.Recall(0);
    EXPECT_TRUE(stream.IsSilent());
}

TEST_F(SoundStreamTest, AChangeOfVolumeIsARamp)
{
    AddPieces(20);
    Play(2);
    stream.SetVolume(64);
    Play(2);
    EXPECT_EQ(heard.back(), kLoud / 4);
    stream.SetVolume(256);
    Play(2);
    EXPECT_EQ(heard.back(), kLoud);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, ItsFirstVolumeNeedsNoRamp)
{
    stream.SetVolume(0);
    AddPieces(5);
    Play(2);
    EXPECT_EQ(heard, Sums(2 * kPortion));
}

TEST_F(SoundStreamTest, WhatIsEndedFadesOutSoon)
{
    AddPieces(20);
    Play(2);
    stream.End();
    Play(1);
    EXPECT_TRUE(stream.IsEnded());
    EXPECT_EQ(heard.back(), 0);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, KeepsNoMoreThanSecondsForADeviceThatTakesNothing)
{
    AddPieces(99);
    EXPECT_FALSE(stream.IsSilent());
    AddPieces(2);
    EXPECT_TRUE(stream.IsSilent());
}

TEST_F(SoundStreamTest, IsAddedToWhatIsThere)
{
    AddPieces(10);
    Play(2);
    Sums sums(kPortion, 7);
    stream.Mix(sums.data(), kPortion, heardAt);
    EXPECT_EQ(sums, Sums(kPortion, kLoud + 7));
}

// Whatever a user does, and however late everything is.
TEST_F(SoundStreamTest, NeverClicks)
{
    std::mt19937 random(4711);
    const auto choose = [&](int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(random);
    };
    for (int step = 0; step < 20'000; ++step) {
        switch (choose(0, 9)) {
        case 0:
            stream.SetVolume(choose(0, 256));
            break;
        case 1:
            stream.Recall(heardAt + choose(-50'000, 50'000));
            time = heardAt + choose(-50'000, 100'000);
            break;
        case 2:
            heardAt += choose(-30'000, 60'000);
            break;
        case 3:
            time = heardAt + choose(-60'000, 60'000);
            AddPieces(choose(1, 3));
            break;
        default:
            if (time < heardAt + 100'000) {
                AddPieces(choose(1, 2));
            }
        }
        Play(1);
    }
    EXPECT_EQ(*std::max_element(heard.begin(), heard.end()), kLoud);
    // A ramp of the volume may meet that of a beginning or an end.
    EXPECT_LE(LargestStep(), 2 * LargestGentleStep());
}

TEST(SoundStream, IsBroughtToTheDevicesFormat)
{
    SoundStream stream({kRate, 1}, {2 * kRate, 2});
    const std::vector<SInt16> frames(3000, kLoud);
    stream.Add(frames.data(), 3000, 0);
    stream.Add(frames.data(), 3000, 300'000);
    Sums sums(2 * 4000);
    stream.Mix(sums.data(), 4000, 0);
    EXPECT_EQ(sums[2 * 3999], kLoud);
    EXPECT_EQ(sums[2 * 3999 + 1], kLoud);
    EXPECT_EQ(stream.DueTime(), 200'000);
}

} // namespace

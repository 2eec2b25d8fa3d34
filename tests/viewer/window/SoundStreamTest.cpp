// SPDX-License-Identifier: MIT
#include "viewer/window/SoundStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace
{

using viewer::SoundStream;
using Sums = std::vector<SInt32>;

// Sound of full loudness, so that every step in it is a click.
constexpr SInt16 kLoud = 20000;
constexpr SInt32 kRate = 10000;
constexpr SInt32 kPiece = 300; // 30 milliseconds
constexpr SInt64 kPieceTime = 30'000;
constexpr size_t kPortion = 200;

class SoundStreamTest : public testing::Test
{
protected:
    // The next piece that follows without a gap.
    void AddPiece(SInt16 level = kLoud)
    {
        const std::vector<SInt16> frames(kPiece, level);
        stream.Add(frames.data(), kPiece, time);
        time += kPieceTime;
    }
    void AddPieces(int count)
    {
        for (int i = 0; i < count; ++i) {
            AddPiece();
        }
    }
    // What the device gets, portion after portion.
    void Play(int portions)
    {
        for (int i = 0; i < portions; ++i) {
            Sums sums(kPortion);
            stream.Mix(sums.data(), kPortion);
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
        return kLoud / static_cast<SInt32>(stream.RampFrames()) + 1;
    }

    SoundStream stream{{kRate, 1}, {kRate, 1}};
    SInt64 time = 1'000'000;
    Sums heard;
};

TEST_F(SoundStreamTest, IsSilentBeforeAnythingComes)
{
    Play(2);
    EXPECT_EQ(heard, Sums(2 * kPortion));
    EXPECT_EQ(stream.PlayingTime(), std::nullopt);
}

TEST_F(SoundStreamTest, GathersMoreThanOnePieceBeforeItSounds)
{
    AddPiece();
    Play(1);
    EXPECT_EQ(heard, Sums(kPortion));
    AddPieces(2);
    Play(1);
    EXPECT_NE(heard.back(), 0);
}

TEST_F(SoundStreamTest, SoundShorterThanWhatIsGatheredIsHeardToo)
{
    AddPiece();
    Play(10);
    EXPECT_EQ(*std::max_element(heard.begin(), heard.end()), kLoud);
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
    Play(1);
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
    AddPiece(-kLoud);
    AddPiece(-kLoud);
    Play(15);
    EXPECT_EQ(*std::min_element(heard.begin(), heard.end()), -kLoud);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, APauseInMidSoundDoesNotClick)
{
    AddPieces(6);
    Play(12);
    time += 2'000'000;
    AddPieces(6);
    Play(12);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, WhatComesTooLateIsWaitedForLongerTheNextTime)
{
    const auto portionsUntilSound = [this] {
        heard.clear();
        int portions = 0;
        while (heard.empty() || heard.back() == 0) {
            if (portions > 0 || !stream.IsSilent()) {
                AddPiece();
            }
            Play(1);
            if (++portions > 50) {
                break;
            }
        }
        return portions;
    };
    AddPiece();
    const int first = portionsUntilSound();
    Play(50);   // runs dry …
    AddPiece(); // … and the sound goes on at the same place of the movie
    const int second = portionsUntilSound();
    EXPECT_GE(second, first);
    EXPECT_LT(second, 50);
}

TEST_F(SoundStreamTest, TellsWhichTimeOfThePageIsHeard)
{
    AddPieces(10);
    Play(3);
    EXPECT_EQ(stream.PlayingTime(), 1'000'000 + 3 * SInt64{kPortion} * 1'000'000 / kRate);
}

TEST_F(SoundStreamTest, WhatIsEndedFadesOutSoon)
{
    AddPieces(20);
    Play(2);
    stream.End();
    Play(3);
    EXPECT_TRUE(stream.IsEnded());
    EXPECT_EQ(heard.back(), 0);
    EXPECT_LE(LargestStep(), LargestGentleStep());
}

TEST_F(SoundStreamTest, IsAddedToWhatIsThere)
{
    AddPieces(10);
    Play(2);
    Sums sums(kPortion, 7);
    stream.Mix(sums.data(), kPortion);
    EXPECT_EQ(sums, Sums(kPortion, kLoud + 7));
}

TEST(SoundStream, IsBroughtToTheDevicesFormat)
{
    SoundStream stream({kRate, 1}, {2 * kRate, 2});
    const std::vector<SInt16> frames(3000, kLoud);
    stream.Add(frames.data(), 3000, 0);
    stream.Add(frames.data(), 3000, 300'000);
    Sums sums(2 * 4000);
    stream.Mix(sums.data(), 4000);
    EXPECT_EQ(sums[2 * 3999], kLoud);
    EXPECT_EQ(sums[2 * 3999 + 1], kLoud);
    EXPECT_EQ(stream.PlayingTime(), 200'000 + 50); // the last frame waits for its successor
}

} // namespace

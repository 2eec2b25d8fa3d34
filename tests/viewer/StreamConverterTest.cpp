// SPDX-License-Identifier: MIT
#include "viewer/StreamConverter.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

using viewer::SoundFormat;
using viewer::StreamConverter;
using Samples = std::vector<SInt16>;

Samples Convert(SoundFormat from, SoundFormat to, const Samples& in)
{
    return StreamConverter(from, to).Convert(in.data(),
                                             static_cast<SInt32>(in.size()) / from.channels);
}

TEST(StreamConverter, EqualFormatsPassUnchanged)
{
    const Samples in = {1, -2, 32767, -32768};
    EXPECT_EQ(Convert({48000, 2}, {48000, 2}, in), in);
}

TEST(StreamConverter, OneChannelIsPutIntoEach)
{
    EXPECT_EQ(Convert({8000, 1}, {8000, 2}, {5, -7}), (Samples{5, 5, -7, -7}));
}

TEST(StreamConverter, ChannelsAreAveragedIntoOne)
{
    EXPECT_EQ(Convert({8000, 2}, {8000, 1}, {10, 20, -32768, -32768}), (Samples{15, -32768}));
}

TEST(StreamConverter, TheLastChannelIsRepeatedAndSurplusOnesAreDropped)
{
    EXPECT_EQ(Convert({8000, 2}, {8000, 3}, {1, 2}), (Samples{1, 2, 2}));
    EXPECT_EQ(Convert({8000, 3}, {8000, 2}, {1, 2, 3}), (Samples{1, 2}));
}

TEST(StreamConverter, TwiceTheRatePutsTheMeanInBetween)
{
    EXPECT_EQ(Convert({8000, 1}, {16000, 1}, {0, 100, 50}), (Samples{0, 50, 100, 75, 50}));
}

TEST(StreamConverter, HalfTheRateTakesEverySecondFrame)
{
    EXPECT_EQ(Convert({16000, 1}, {8000, 1}, {0, 1, 2, 3, 4, 5}), (Samples{0, 2, 4}));
}

TEST(StreamConverter, TheWayAStreamIsCutMakesNoDifference)
{
    std::mt19937 random(4);
    std::uniform_int_distribution<int> value(-32768, 32767);
    std::uniform_int_distribution<SInt32> block(1, 700);
    Samples in(2 * 10'000);
    for (SInt16& sample : in) {
        sample = static_cast<SInt16>(value(random));
    }
    const Samples whole = Convert({44100, 2}, {48000, 2}, in);
    EXPECT_NEAR(static_cast<double>(whole.size()), 2 * 10'000 * 48000.0 / 44100, 4);
    StreamConverter converter({44100, 2}, {48000, 2});
    Samples pieces;
    for (SInt32 done = 0; done < 10'000;) {
        const SInt32 count = std::min(block(random), 10'000 - done);
        const Samples piece = converter.Convert(in.data() + 2 * done, count);
        pieces.insert(pieces.end(), piece.begin(), piece.end());
        done += count;
    }
    EXPECT_EQ(pieces, whole);
}

} // namespace

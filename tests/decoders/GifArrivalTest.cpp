// SPDX-License-Identifier: MIT
//
// GIF files that arrive over time.
#include "tests/decoders/GifTest.h"
#include "tests/support/CooperativeThread.h"

#include <random>

using namespace test;

namespace
{

constexpr UInt16 kWidth = 40;
constexpr UInt16 kHeight = 64;

std::string Noise(size_t size, UInt32 seed)
{
    std::mt19937 random(seed);
    std::string indices(size, '\0');
    for (char& index : indices)
        index = static_cast<char>(random() & 0xFF);
    return indices;
}

// All that a file can have: interlaced and in order, local colours, transparency, offsets.
std::string MixedFile()
{
    GifColorList colors;
    for (UInt32 i = 0; i < 256; ++i)
        colors.push_back(i * 0x010101);
    GifImage large = {0, 0, kWidth, kHeight, Noise(size_t{kWidth} * kHeight, 1)};
    large.isInterlaced = true;
    const GifImage small = {5, 6, 20, 10, Noise(200, 2), {kRed, kGreen, kBlue, kWhite}};
    return GifBuilder(kWidth, kHeight, colors)
        .Repeats(3)
        .Comment("a mixed file")
        .Control({2, 7, 9})
        .Image(large)
        .Control({3, 0, 1, true})
        .Image(small)
        .Image(small)
        .Bytes();
}

GifBuilder TallFile()
{
    return GifBuilder(kWidth, kHeight, {kBlack, kRed, kGreen, kWhite})
        .Image({0, 0, kWidth, kHeight, Noise(size_t{kWidth} * kHeight, 3)});
}

class GifArrival : public GifTest
{
protected:
    // How many rows of the first frame have something to show.
    int RowsThere()
    {
        const FrameContents frame = Frame(0);
        int rows = 0;
        for (size_t v = 0; v < kHeight; ++v)
            rows += frame.pixels[v * kWidth] != kNoColor ? 1 : 0;
        return rows;
    }
};

} // namespace

TEST_F(GifArrival, GivesTheSameFramesHoweverTheBytesArrive)
{
    const std::string file = MixedFile();
    ASSERT_EQ(Decode(file), 0);
    const std::vector<FrameContents> atOnce = Frames();
    ASSERT_EQ(atOnce.size(), 3U);
    std::mt19937 random(4);
    for (int round = 0; round < 20; ++round) {
        std::vector<SInt32> arrivals;
        const SInt32 most = 1 << (round % 10);
        for (SInt32 sum = 0; sum < static_cast<SInt32>(file.size()); sum += arrivals.back())
            arrivals.push_back(static_cast<SInt32>(random() % static_cast<UInt32>(most + 1)));
        ASSERT_EQ(DecodeArriving(file, arrivals), 0);
        EXPECT_TRUE(Frames() == atOnce) << "at most " << most << " bytes at a time";
    }
}

TEST_F(GifArrival, TakesTheEndReportedWithTheLastBytes)
{
    host_.reportsEndWithLastBytes = true;
    EXPECT_EQ(Decode(MixedFile()), 0);
    EXPECT_EQ(FrameCount(), 3);
}

TEST_F(GifArrival, ShowsRowsBeforeTheRestIsThere)
{
    const std::string file = TallFile().Bytes();
    const auto half = static_cast<SInt32>(file.size() / 2);
    int rowsAtHalf = 0;
    host_.onGetData = [&] {
        if (host_.arrived == half && FrameCount() > 0)
            rowsAtHalf = RowsThere();
    };
    ASSERT_EQ(DecodeArriving(file, {half, 0, 0, half + 1}), 0);
    EXPECT_GT(rowsAtHalf, kHeight / 3);
    EXPECT_LT(rowsAtHalf, kHeight);
    EXPECT_EQ(RowsThere(), kHeight);
}

TEST_F(GifArrival, TellsTheHostOfEveryRowOnceBeforeItWaitsForMore)
{
    const std::string file = TallFile().Bytes();
    ASSERT_EQ(Decode(file, 200), 0);
    int nextRow = 0;
    int chunks = 0;
    for (const std::string& each : host_.told) {
        int first = 0;
        int end = 0;
        if (std::sscanf(each.c_str(), "decodedChunk %d,%d", &first, &end) != 2)
            continue;
        EXPECT_EQ(first, nextRow);
        EXPECT_GT(end, first);
        nextRow = end;
        ++chunks;
    }
    EXPECT_EQ(nextRow, kHeight);
    EXPECT_GT(chunks, 5);
    EXPECT_EQ(host_.told.back(), "renderingDone 0");
}

TEST_F(GifArrival, HasToldOfAllRowsThatAreThereWhenItAsksForMore)
{
    const std::string file = TallFile().Bytes();
    host_.onGetData = [&] {
        if (FrameCount() == 0 || Image().renderingFinished)
            return;
        EXPECT_GE(Image().invalidBottom, RowsThere());
    };
    ASSERT_EQ(Decode(file, 500), 0);
}

TEST_F(GifArrival, TellsOfInterlacedRowsByTheBandTheyAreIn)
{
    GifImage image = {0, 0, 1, 16, std::string(16, '\1')};
    image.isInterlaced = true;
    ASSERT_EQ(Decode(GifBuilder(1, 16, {kBlack, kRed}).Image(image).Bytes()), 0);
    SInt32 covered = 0;
    for (const std::string& each : host_.told) {
        int first = 0;
        int end = 0;
        if (std::sscanf(each.c_str(), "decodedChunk %d,%d", &first, &end) == 2)
            covered = std::max(covered, end);
    }
    EXPECT_EQ(covered, 16);
}

TEST_F(GifArrival, TellsRowsByTheirPlaceOnTheCanvas)
{
    const std::string file =
        GifBuilder(1, 9, {kBlack, kRed}).Image({0, 7, 1, 2, std::string(2, '\1')}).Bytes();
    ASSERT_EQ(Decode(file), 0);
    EXPECT_EQ(Image().invalidTop, 7);
    EXPECT_EQ(Image().invalidBottom, 9);
}

TEST_F(GifArrival, TellsNoRowsOfLaterFrames)
{
    const std::string file = GifBuilder(2, 2, {kBlack, kRed})
                                 .Image({0, 0, 2, 1, std::string(2, '\1')})
                                 .Image({0, 0, 2, 2, std::string(4, '\1')})
                                 .Bytes();
    ASSERT_EQ(Decode(file), 0);
    EXPECT_EQ(Image().invalidBottom, 1);
}

TEST_F(GifArrival, LetsOtherThreadsRunWhileItWaitsAndDraw)
{
    host_.yields = true;
    const std::string file = TallFile().Bytes();
    OSErr result = -1;
    int displays = 0;
    {
        CooperativeThread decoding([&] { result = Decode(file, 100); });
        do {
            YieldToAnyThread();
        } while (!Image().haveDimensions);
        OpenWindow();
        while (!decoding.HasEnded()) {
            Display();
            ++displays;
            YieldToAnyThread();
        }
    }
    EXPECT_EQ(result, 0);
    EXPECT_GT(displays, 10);
    EXPECT_EQ(RowsThere(), kHeight);
}

TEST_F(GifArrival, EndsWhereItsThreadIsDisposedOfWhileItWaits)
{
    host_.yields = true;
    host_.ends = false;
    bool hasEnded = false;
    {
        CooperativeThread decoding([&] {
            Decode(TallFile().Bytes().substr(0, 1500));
            hasEnded = true; // only if it was not unwound
        });
        for (int i = 0; i < 20; ++i)
            YieldToAnyThread();
        EXPECT_GT(RowsThere(), 0);
    }
    EXPECT_EQ(FrameCount(), 1);
    EXPECT_GT(RowsThere(), 0);
}

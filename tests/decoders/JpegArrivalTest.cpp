// SPDX-License-Identifier: MIT
//
// JPEG images on their way: what shows before the end, and what a host is told.
#include "tests/decoders/JpegFiles.h"
#include "tests/support/ImageRules.h"
#include "tests/support/ManualClock.h"
#include "tests/support/PictureRows.h"

#include <gtest/gtest.h>

#include <cmath>

namespace test
{

namespace
{

constexpr SInt32 kWidth = 200;
constexpr SInt32 kHeight = 160;
constexpr UInt32 kRedPage = 0xFF0000;

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornJPEG");
    return bundle;
}

Bytes LargeFile(bool isProgressive)
{
    return WriteJpeg({.width = kWidth, .height = kHeight, .isProgressive = isProgressive});
}

// How far two pictures are apart on the whole.
double Distance(const Picture& a, const Picture& b)
{
    double sum = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        for (int shift = 0; shift < 24; shift += 8)
            sum += std::abs(static_cast<double>(a.pixels[i] >> shift & 0xFF) -
                            static_cast<double>(b.pixels[i] >> shift & 0xFF));
    }
    return sum / static_cast<double>(a.pixels.size());
}

// When, in ticks, a host was told of the whole of a progressive image of which `bytes` arrive after
// every `ticks`.
std::vector<UInt32> TimesOfWholeImages(SInt32 bytes, UInt32 ticks)
{
    ManualClock clock;
    HostedImage image(Bundle(), LargeFile(true));
    image.ArriveInPieces(bytes);
    UInt32 now = 1;
    size_t seen = 0;
    std::vector<UInt32> times;
    const auto noteTimes = [&] {
        for (; seen < image.host.told.size(); ++seen) {
            if (image.host.told[seen] == DecodedChunk({0, kHeight}))
                times.push_back(now);
        }
    };
    image.host.onGetData = [&] {
        noteTimes();
        clock.GoToTick(now += ticks);
    };
    EXPECT_EQ(image.Decode(), 0);
    noteTimes();
    return times;
}

TEST(JpegArrival, TellsTheSizeWithTheHeader)
{
    const Bytes file = LargeFile(false);
    HostedImage image(Bundle(), file);
    image.host.arrivals = {static_cast<SInt32>(FindMarker(file, 0xDA) + 14)};
    bool knewTheSize = false;
    image.host.arrivals.push_back(0);
    image.host.arrivals.push_back(0);
    image.host.onGetData = [&] {
        knewTheSize = knewTheSize || image.WasTold("gotRect 0,0,160,200");
    };
    image.Decode();
    EXPECT_TRUE(knewTheSize);
}

TEST(JpegArrival, DrawsPartiallyTheRowsThatItTellsOf)
{
    EXPECT_GT(CountBandsDrawnAsTold(Bundle(), {LargeFile(false), kWidth, kHeight}, 500), 5);
}

TEST(JpegArrival, ShowsTheFirstScanOfAProgressiveImageRowByRow)
{
    const Bytes file = LargeFile(true);
    HostedImage image(Bundle(), file);
    const size_t first = FindMarker(file, 0xDA);
    const size_t second = FindMarker(file, 0xDA, 2);
    image.host.arrivals = {static_cast<SInt32>((first + second) / 2), 0, 0,
                           static_cast<SInt32>(file.size())};
    RowBand rows;
    image.host.onGetData = [&] {
        if (rows.second == 0 && image.WasTold("decodedChunk"))
            rows = DrawnRows(image.Display(kWidth, kHeight, kRedPage, true), kRedPage);
    };
    image.Decode();
    EXPECT_EQ(rows.first, 0);
    EXPECT_GT(rows.second, kHeight / 4);
    EXPECT_LT(rows.second, kHeight * 3 / 4);
}

TEST(JpegArrival, SharpensAProgressiveImageScanByScan)
{
    const Bytes file = LargeFile(true);
    const Picture whole = ReadJpeg(file);
    HostedImage image(Bundle(), file);
    std::vector<double> distances;
    size_t seen = 0;
    ManualClock clock;
    UInt32 now = 1;
    image.ArriveInPieces(400);
    image.host.onGetData = [&] {
        clock.GoToTick(now += 20);
        if (image.host.told.size() == seen)
            return;
        seen = image.host.told.size();
        if (image.host.told.back() == DecodedChunk({0, kHeight}))
            distances.push_back(Distance(image.Display(kWidth, kHeight), whole));
    };
    image.Decode();
    ASSERT_GE(distances.size(), 3U);
    EXPECT_LT(distances.back(), distances.front() / 2);
}

TEST(JpegArrival, ShowsFourWholeImagesASecondAtMost)
{
    std::vector<UInt32> times = TimesOfWholeImages(50, 1);
    ASSERT_GE(times.size(), 4U);
    times.pop_back(); // the finished one
    for (size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times[i] - times[i - 1], 15U) << i;
}

TEST(JpegArrival, ShowsEveryScanThatHasTheTime)
{
    // Two of its scans never come in one piece; the clock decides about the others.
    EXPECT_GE(TimesOfWholeImages(400, 15).size(), 6U);
}

TEST(JpegArrival, ShowsTheFinishedImageWithoutWaitingForItsTurn)
{
    EXPECT_EQ(TimesOfWholeImages(400, 0).size(), 1U);
}

TEST(JpegArrival, AsksForNothingBehindTheEnd)
{
    const Bytes file = LargeFile(false);
    Bytes withMore = file;
    withMore.resize(file.size() + 100000);
    HostedImage image(Bundle(), withMore);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_LT(image.host.requests.back().offset, static_cast<SInt32>(file.size()));
}

TEST(JpegArrival, SkipsWhatIsLongerThanABlock)
{
    Bytes file = LargeFile(false);
    const Picture whole = ReadJpeg(file);
    Bytes segment = {0xFF, 0xE5, 0xFF, 0xF0};
    segment.resize(2 + 0xFFF0, 0xFF);
    for (int i = 0; i < 3; ++i)
        file.insert(file.begin() + 2, segment.begin(), segment.end());
    HostedImage image(Bundle(), file);
    image.ArriveInPieces(500);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Display(kWidth, kHeight), whole);
}

TEST(JpegComment, IsTheFilesOwn)
{
    HostedImage image(Bundle(), WriteJpeg({.comment = "By the sea"}));
    image.Decode();
    EXPECT_EQ(image.Comment(), "By the sea");
}

TEST(JpegComment, IsCutBetweenCharactersWhereItIsLong)
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += "\xC3\xA9"; // e with an acute accent
    HostedImage image(Bundle(), WriteJpeg({.comment = text}));
    image.Decode();
    EXPECT_EQ(image.Comment(), std::string(255, '\x8E'));
}

TEST(JpegType, IsToldByTypeNameOrFirstBytes)
{
    EXPECT_TRUE(Bundle().CanHandle({}, "image/jpeg", ""));
    EXPECT_TRUE(Bundle().CanHandle({}, "image/pjpeg", ""));
    for (const char* const name : {"a.jpg", "a.JPEG", "a.jpe", "a.jfif"})
        EXPECT_TRUE(Bundle().CanHandle({}, "", name)) << name;
    EXPECT_TRUE(Bundle().CanHandle({0xFF, 0xD8, 0xFF}, "", "picture"));
}

TEST(JpegType, IsNotToldByOthers)
{
    EXPECT_FALSE(Bundle().CanHandle({0xFF, 0xD8}, "", ""));
    EXPECT_FALSE(Bundle().CanHandle({0xFF, 0xD8, 0x00, 0x00}, "image/png", "a.png"));
}

} // namespace

} // namespace test

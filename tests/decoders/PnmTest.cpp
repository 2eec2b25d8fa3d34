// SPDX-License-Identifier: MIT
//
// The example decoder of docs/writing-a-decoder.md, as a bundle.
#include "tests/support/ImageRules.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/PictureRows.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>

namespace test
{

namespace
{

using Bytes = std::vector<UInt8>;

constexpr UInt32 kRedPage = 0xFF0000;

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornPNM");
    return bundle;
}

// A file, and what is to be seen of it.
struct Pnm {
    Bytes file;
    Picture picture;
};

Bytes BytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

// Pixels without regularity; none has the paper's colour.
Pnm MakePnm(bool isColor, SInt32 width, SInt32 height)
{
    Pnm pnm = {BytesOf((isColor ? "P6\n" : "P5\n") + std::to_string(width) + ' ' +
                       std::to_string(height) + "\n255\n"),
               {width, height, {}}};
    std::minstd_rand random(1);
    const auto next = [&random] { return static_cast<UInt8>(random() >> 8 & 0x7F); };
    for (SInt32 i = 0; i < width * height; ++i) {
        const UInt8 red = next();
        const UInt8 green = isColor ? next() : red;
        const UInt8 blue = isColor ? next() : red;
        pnm.file.push_back(red);
        if (isColor)
            pnm.file.insert(pnm.file.end(), {green, blue});
        pnm.picture.pixels.push_back(UInt32{red} << 16 | UInt32{green} << 8 | blue);
    }
    return pnm;
}

TEST(PnmDecoding, ShowsEveryPixelHoweverTheBytesArrive)
{
    for (const bool isColor : {true, false}) {
        const Pnm pnm = MakePnm(isColor, 61, 97);
        for (const SInt32 piece : {1, 2, 7, 60, 61, 183, 4096, 100000}) {
            HostedImage image(Bundle(), pnm.file);
            image.ArriveInPieces(piece);
            EXPECT_EQ(image.Decode(), 0);
            EXPECT_EQ(image.Display(61, 97), pnm.picture) << piece << " bytes at a time";
        }
    }
}

TEST(PnmDecoding, KeepsGraysInOneByteAPixel)
{
    HostedImage image(Bundle(), MakePnm(false, 5, 5).file);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Depth(), 8);
}

TEST(PnmDecoding, TakesTheLargestSampleForWhite)
{
    HostedImage image(Bundle(), BytesOf(std::string("P5 4 1 100\n\0\x01\x64\xC8", 15)));
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Display(4, 1).pixels,
              std::vector<UInt32>({0x000000, 0x020202, 0xFFFFFF, 0xFFFFFF}));
}

TEST(PnmDecoding, SkipsCommentsInTheHeader)
{
    HostedImage image(Bundle(), BytesOf("P5\n# 9 9\n#\n2 # columns\n\n 1\n#\n255\n#$"));
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Display(2, 1).pixels, std::vector<UInt32>({0x232323, 0x242424}));
}

TEST(PnmDecoding, AsksForNothingBehindTheLastRow)
{
    Pnm pnm = MakePnm(true, 3, 3);
    const auto size = static_cast<SInt32>(pnm.file.size());
    pnm.file.resize(100000, 'x');
    HostedImage image(Bundle(), pnm.file);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Display(3, 3), pnm.picture);
    EXPECT_LT(image.host.requests.back().offset, size);
}

TEST(PnmArrival, TellsTheSizeWithTheHeader)
{
    HostedImage image(Bundle(), BytesOf("P6\n40 30\n255\n"));
    image.Decode();
    EXPECT_TRUE(image.WasTold("gotRect 0,0,30,40"));
    EXPECT_FALSE(image.WasTold("decodedChunk"));
}

TEST(PnmArrival, DrawsPartiallyTheRowsThatItTellsOf)
{
    const Pnm pnm = MakePnm(true, 50, 200);
    HostedImage image(Bundle(), pnm.file);
    size_t seen = 0;
    int bands = 0;
    image.host.onGetData = [&] {
        int top = 200;
        int bottom = 0;
        for (; seen < image.host.told.size(); ++seen) {
            int first = 0;
            int end = 0;
            const char* const told = image.host.told[seen].c_str();
            if (std::sscanf(told, "decodedChunk %d,%d", &first, &end) == 2) {
                top = std::min(top, first);
                bottom = std::max(bottom, end);
            }
        }
        if (top < bottom) {
            ++bands;
            const Picture page = image.Display(50, 200, kRedPage, true);
            EXPECT_EQ(DrawnRows(page, kRedPage), std::make_pair(top, bottom));
        }
    };
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_GT(bands, 5);
}

TEST(PnmArrival, TellsOfEveryRowOnce)
{
    HostedImage image(Bundle(), MakePnm(false, 50, 200).file);
    image.ArriveInPieces(1000);
    image.Decode();
    int next = 0;
    for (const std::string& told : image.host.told) {
        int first = 0;
        int end = 0;
        if (std::sscanf(told.c_str(), "decodedChunk %d,%d", &first, &end) != 2)
            continue;
        EXPECT_EQ(first, next);
        next = end;
    }
    EXPECT_EQ(next, 200);
}

TEST(PnmDamage, KeepsTheRowsThatArrived)
{
    const Pnm pnm = MakePnm(true, 20, 10);
    // Five rows and a half.
    HostedImage image(Bundle(), Bytes(pnm.file.begin(), pnm.file.end() - 20 * 3 * 9 / 2));
    EXPECT_EQ(image.Decode(), kDataNotAvailableErr);
    EXPECT_TRUE(image.WasTold("renderingDone 1207"));
    const Picture page = image.Display(20, 10, kRedPage);
    EXPECT_EQ(CommonRows(page, pnm.picture), 5);
    EXPECT_EQ(std::vector<UInt32>(page.pixels.begin() + 5 * 20, page.pixels.end()),
              std::vector<UInt32>(5 * 20, 0xFFFFFF));
}

TEST(PnmDamage, KeepsTheRowsBeforeAFailureOfTheHost)
{
    const Pnm pnm = MakePnm(true, 100, 100);
    HostedImage image(Bundle(), pnm.file);
    image.ArriveInPieces(5000);
    image.host.onGetData = [&image] {
        if (image.WasTold("decodedChunk"))
            image.host.failure = ioErr;
    };
    EXPECT_EQ(image.Decode(), ioErr);
    EXPECT_GE(CommonRows(image.Display(100, 100), pnm.picture), 4096 / 300);
}

TEST(PnmDamage, SaysThatThereIsNothingOfAnIncompleteHeader)
{
    const std::string header = "P6\n# text\n40 30\n255";
    for (size_t size = 0; size <= header.size(); ++size) {
        HostedImage image(Bundle(), BytesOf(header.substr(0, size)));
        EXPECT_EQ(image.Decode(), kVornErrImageFailed) << size;
        EXPECT_TRUE(image.WasTold("renderingDone 1208")) << size;
        EXPECT_EQ(image.Depth(), 0) << size;
    }
}

TEST(PnmDamage, RefusesWhatItCannotShow)
{
    for (const char* const header :
         {"P4\n8 8\n255\n", "P7\n8 8\n255\n", "Q6\n8 8\n255\n", "P6\n0 8\n255\n", "P6\n8 0\n255\n",
          "P6\n8 8\n0\n", "P6\n8 8\n256\n", "P6\n8 8\n65535\n", "P6\n32768 8\n255\n",
          "P6\n8 99999999999999999999\n255\n", "P6\n8 -8\n255\n", "P6\n8 8x\n255\n"}) {
        HostedImage image(Bundle(), BytesOf(header + std::string(1000, '\n')));
        EXPECT_EQ(image.Decode(), kVornErrImageFailed) << header;
        EXPECT_TRUE(image.WasTold("renderingDone 1206")) << header;
        EXPECT_FALSE(image.WasTold("gotRect")) << header;
    }
}

TEST(PnmDamage, LeavesNothingBehind)
{
    for (const bool isColor : {true, false})
        ExpectNothingLeftOfParts(Bundle(), {MakePnm(isColor, 4, 4).file, 4, 4}, 1);
}

TEST(PnmLimits, TakeWhatIsAllowedAndNoMore)
{
    const Pnm pnm = MakePnm(true, 100, 100);
    {
        const MemoryLimit limit(100 * 100 * 4);
        HostedImage image(Bundle(), pnm.file);
        EXPECT_EQ(image.Decode(), 0);
    }
    const MemoryLimit limit(100 * 100 * 4 - 1);
    HostedImage image(Bundle(), pnm.file);
    EXPECT_EQ(image.Decode(), memFullErr);
    EXPECT_EQ(image.Depth(), 0);
}

TEST(PnmLimits, RefuseRowsThatRowBytesCannotHold)
{
    HostedImage wide(Bundle(), MakePnm(true, 16383, 1).file);
    EXPECT_EQ(wide.Decode(), 0);
    HostedImage tooWide(Bundle(), MakePnm(true, 16384, 1).file);
    EXPECT_EQ(tooWide.Decode(), memFullErr);
}

TEST(PnmType, IsToldByTypeNameOrFirstBytes)
{
    EXPECT_TRUE(Bundle().CanHandle({}, "image/x-portable-pixmap", ""));
    EXPECT_TRUE(Bundle().CanHandle({}, "", "picture.PGM"));
    EXPECT_TRUE(Bundle().CanHandle(BytesOf("P5\n"), "application/octet-stream", "picture"));
    EXPECT_TRUE(Bundle().CanHandle(BytesOf("P6\n"), "application/octet-stream", "picture"));
    EXPECT_TRUE(Bundle().CanHandle(BytesOf("P6\n1 1"), "", ""));
}

TEST(PnmType, IsNotToldByOthers)
{
    EXPECT_FALSE(Bundle().CanHandle({}, "", ""));
    EXPECT_FALSE(Bundle().CanHandle(BytesOf("P6"), "", "ppm"));
    EXPECT_FALSE(Bundle().CanHandle(BytesOf("P50 is a text"), "text/plain", "a.txt"));
    EXPECT_FALSE(Bundle().CanHandle(BytesOf("P60 is a text"), "text/plain", "a.txt"));
}

} // namespace

} // namespace test

// SPDX-License-Identifier: MIT
//
// PNG images on their way: what shows before the end, and what a host is told.
#include "tests/decoders/PngFiles.h"
#include "tests/support/ImageRules.h"
#include "tests/support/PictureRows.h"

#include <gtest/gtest.h>

namespace test
{

namespace
{

constexpr SInt32 kWidth = 200;
constexpr SInt32 kHeight = 160;
constexpr UInt32 kRedPage = 0xFF0000;

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornPNG");
    return bundle;
}

PngSpec LargeSpec()
{
    PngSpec spec;
    spec.width = kWidth;
    spec.height = kHeight;
    return spec;
}

TEST(PngArrival, TellsTheSizeWithTheHeader)
{
    const Bytes file = WritePng(LargeSpec());
    HostedImage image(Bundle(), file);
    // Up to the first rows' chunk and its length, without a byte of it.
    image.host.arrivals = {static_cast<SInt32>(FindChunk(file, "IDAT") + 8)};
    image.Decode();
    EXPECT_TRUE(image.WasTold("gotRect 0,0,160,200"));
    EXPECT_FALSE(image.WasTold("decodedChunk"));
}

TEST(PngArrival, DrawsPartiallyTheRowsThatItTellsOf)
{
    EXPECT_GT(CountBandsDrawnAsTold(Bundle(), {WritePng(LargeSpec()), kWidth, kHeight}, 5000), 5);
}

TEST(PngArrival, DrawsPartiallyNothingAgain)
{
    const Bytes file = WritePng(LargeSpec());
    HostedImage image(Bundle(), file);
    image.host.arrivals = {static_cast<SInt32>(file.size() / 2), 0, 0,
                           static_cast<SInt32>(file.size())};
    Picture again;
    image.host.onGetData = [&] {
        if (again.width != 0 || !image.WasTold("decodedChunk"))
            return;
        image.Display(kWidth, kHeight, kRedPage, true);
        again = image.Display(kWidth, kHeight, kRedPage, true);
    };
    image.Decode();
    ASSERT_EQ(again.width, kWidth);
    EXPECT_EQ(DrawnRows(again, kRedPage).second, 0);
}

TEST(PngArrival, ShowsEveryPartOfAnInterlacedImageEarly)
{
    PngSpec spec = LargeSpec();
    spec.isInterlaced = true;
    const Bytes file = WritePng(spec);
    HostedImage image(Bundle(), file);
    image.host.arrivals = {static_cast<SInt32>(file.size() / 20)};
    image.Decode();
    EXPECT_EQ(DrawnRows(image.Display(kWidth, kHeight, kRedPage), kRedPage), RowBand(0, kHeight));
}

TEST(PngArrival, LeavesThePageWhereATransparentImageHasNotArrived)
{
    PngSpec spec = LargeSpec();
    spec.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
    const Bytes file = WritePng(spec);
    HostedImage image(Bundle(), file);
    image.host.arrivals = {static_cast<SInt32>(file.size() / 2)};
    image.Decode();
    const auto rows = DrawnRows(image.Display(kWidth, kHeight, kRedPage), kRedPage);
    EXPECT_GT(rows.second, kHeight / 4);
    EXPECT_LT(rows.second, kHeight * 3 / 4);
}

TEST(PngArrival, AsksForNothingBehindTheEnd)
{
    const Bytes file = WritePng(PngSpec());
    Bytes withMore = file;
    withMore.resize(file.size() + 100000);
    HostedImage image(Bundle(), withMore);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Display(37, 29), ReadPng(file));
    EXPECT_LT(image.host.requests.back().offset, static_cast<SInt32>(file.size()));
}

TEST(PngArrival, EndsWithTheLastByteWhateverFollows)
{
    const Bytes file = WritePng(PngSpec());
    Bytes withMore = file;
    withMore.resize(file.size() + 100);
    HostedImage image(Bundle(), withMore);
    image.ArriveInPieces(1);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.host.requests.back().offset, static_cast<SInt32>(file.size()) - 1);
}

TEST(PngComment, IsTheBestOfTheTexts)
{
    PngSpec spec;
    spec.texts = {{"Author", "me"}, {"Title", "A title"}, {"Description", "What is seen"}};
    for (const int kind : {PNG_TEXT_COMPRESSION_NONE, PNG_TEXT_COMPRESSION_zTXt,
                           PNG_ITXT_COMPRESSION_NONE, PNG_ITXT_COMPRESSION_zTXt}) {
        spec.textKind = kind;
        HostedImage image(Bundle(), WritePng(spec));
        image.Decode();
        EXPECT_EQ(image.Comment(), "What is seen") << kind;
    }
    spec.texts.push_back({"Comment", "A comment"});
    HostedImage image(Bundle(), WritePng(spec));
    image.Decode();
    EXPECT_EQ(image.Comment(), "A comment");
}

TEST(PngComment, IsEmptyWithoutATextThatSaysWhatIsSeen)
{
    PngSpec spec;
    spec.texts = {{"Software", "encoder 1.0"}};
    HostedImage image(Bundle(), WritePng(spec));
    image.Decode();
    EXPECT_EQ(image.Comment(), "");
}

TEST(PngComment, IsThereWithTheHeader)
{
    PngSpec spec;
    spec.texts = {{"Comment", "A comment"}};
    const Bytes file = WritePng(spec);
    HostedImage image(Bundle(), Bytes(file.begin(), file.begin() + ptrdiff_t(file.size() / 2)));
    image.Decode();
    EXPECT_EQ(image.Comment(), "A comment");
}

TEST(PngComment, BecomesMacRomanFromEitherEncoding)
{
    for (const char* const text : {"na\xEFve \xA9", "na\xC3\xAFve \xC2\xA9"}) {
        PngSpec spec;
        spec.texts = {{"Comment", text}};
        HostedImage image(Bundle(), WritePng(spec));
        image.Decode();
        EXPECT_EQ(image.Comment(), "na\x95ve \xA9");
    }
}

TEST(PngComment, StaysShortEnoughForTheTypeBehindIt)
{
    PngSpec spec;
    spec.texts = {{"Comment", std::string(1000, 'c')}};
    HostedImage image(Bundle(), WritePng(spec));
    image.Decode();
    EXPECT_EQ(image.Comment(), std::string(255, 'c'));
}

TEST(PngType, IsToldByTypeNameOrFirstBytes)
{
    const Bytes file = WritePng(PngSpec());
    EXPECT_TRUE(Bundle().CanHandle({}, "image/PNG", ""));
    EXPECT_TRUE(Bundle().CanHandle({}, "", "picture.PNG"));
    EXPECT_TRUE(Bundle().CanHandle(file, "application/octet-stream", "picture"));
    EXPECT_TRUE(Bundle().CanHandle(Bytes(file.begin(), file.begin() + 8), "", ""));
}

TEST(PngType, IsNotToldByOthers)
{
    const Bytes file = WritePng(PngSpec());
    EXPECT_FALSE(Bundle().CanHandle(Bytes(file.begin(), file.begin() + 7), "", ""));
    EXPECT_FALSE(Bundle().CanHandle({'G', 'I', 'F', '8', '9', 'a', 0, 0, 0}, "image/gif", "a.gif"));
    EXPECT_FALSE(Bundle().CanHandle({}, "", "png"));
}

} // namespace

} // namespace test

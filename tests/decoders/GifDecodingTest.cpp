// SPDX-License-Identifier: MIT
//
// What the records of a GIF file become.
#include "tests/decoders/GifTest.h"

using namespace test;

namespace
{

const GifColorList kColors = {kBlack, kRed, kGreen, kWhite};

std::string Indices(std::initializer_list<int> values)
{
    return {values.begin(), values.end()};
}

// An image of one colour.
GifImage Plain(UInt16 width, UInt16 height, char index, UInt16 left = 0, UInt16 top = 0)
{
    return {left, top, width, height, std::string(size_t{width} * height, index)};
}

// Two frames, so that the image is animated.
GifBuilder& AddTwoFrames(GifBuilder& gif)
{
    return gif.Image(Plain(1, 1, 1)).Image(Plain(1, 1, 2));
}

class GifDecoding : public GifTest
{
};

} // namespace

TEST_F(GifDecoding, TakesTheColoursFromTheGlobalTable)
{
    ASSERT_EQ(Decode(GifBuilder(2, 2, kColors).Image({0, 0, 2, 2, Indices({0, 1, 2, 3})}).Bytes()),
              0);
    EXPECT_EQ(Frame(0).pixels, (Pixels{kBlack, kRed, kGreen, kWhite}));
}

TEST_F(GifDecoding, PrefersTheImagesOwnTable)
{
    GifImage image = Plain(1, 1, 1);
    image.colors = {kWhite, kBlue};
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors).Image(image).Bytes()), 0);
    EXPECT_EQ(Frame(0).pixels, Pixels{kBlue});
}

TEST_F(GifDecoding, IsBlackAndWhiteWithoutAnyTable)
{
    ASSERT_EQ(Decode(GifBuilder(3, 1).Image({0, 0, 3, 1, Indices({0, 1, 2})}).Bytes()), 0);
    EXPECT_EQ(Frame(0).pixels, (Pixels{kBlack, kWhite, kBlack}));
}

TEST_F(GifDecoding, TakesAnIndexOutsideTheTableForBlack)
{
    ASSERT_EQ(Decode(GifBuilder(2, 1, kColors).Image({0, 0, 2, 1, Indices({3, 200})}).Bytes()), 0);
    EXPECT_EQ(Frame(0).pixels, (Pixels{kWhite, kBlack}));
}

TEST_F(GifDecoding, MakesFramesOfEightBitsAPixelAndMasksOfOne)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors).Image(Plain(1, 1, 1)).Bytes()), 0);
    EXPECT_EQ(Image().frames[0]->depth, 8);
    EXPECT_EQ(Image().frames[0]->maskDepth, 1);
}

TEST_F(GifDecoding, GivesTheGlobalTableToTheImage)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors).Image(Plain(1, 1, 1)).Bytes()), 0);
    ASSERT_NE(Image().colorTable, nullptr);
    EXPECT_EQ((*Image().colorTable)->ctTable[2].rgb.green, 0xFFFF);
    EXPECT_EQ((*Image().colorTable)->ctTable[2].rgb.red, 0);
}

TEST_F(GifDecoding, MakesTheFirstFrameTheWholeCanvas)
{
    ASSERT_EQ(Decode(GifBuilder(3, 2, kColors).Image(Plain(1, 1, 1, 1, 1)).Bytes()), 0);
    const FrameContents frame = Frame(0);
    EXPECT_EQ(frame.width, 3);
    EXPECT_EQ(frame.height, 2);
    EXPECT_EQ(frame.left, 0);
    EXPECT_EQ(frame.top, 0);
    EXPECT_EQ(frame.pixels, (Pixels{kNoColor, kNoColor, kNoColor, kNoColor, kRed, kNoColor}));
}

TEST_F(GifDecoding, GivesLaterFramesTheirOwnPlaceAndSize)
{
    ASSERT_EQ(
        Decode(GifBuilder(4, 3, kColors).Image(Plain(4, 3, 0)).Image(Plain(2, 1, 2, 1, 2)).Bytes()),
        0);
    const FrameContents frame = Frame(1);
    EXPECT_EQ(frame.left, 1);
    EXPECT_EQ(frame.top, 2);
    EXPECT_EQ(frame.pixels, (Pixels{kGreen, kGreen}));
}

TEST_F(GifDecoding, CutsLaterFramesOffAtTheCanvas)
{
    ASSERT_EQ(Decode(GifBuilder(3, 3, kColors)
                         .Image(Plain(3, 3, 0))
                         .Image({2, 1, 2, 4, Indices({1, 2, 1, 2, 1, 2, 1, 2})})
                         .Image(Plain(1, 1, 3))
                         .Bytes()),
              0);
    ASSERT_EQ(FrameCount(), 3);
    EXPECT_EQ(Frame(1).width, 1);
    EXPECT_EQ(Frame(1).height, 2);
    EXPECT_EQ(Frame(1).pixels, (Pixels{kRed, kRed}));
    EXPECT_EQ(Frame(2).pixels, Pixels{kWhite});
}

TEST_F(GifDecoding, FindsAllRowsOnTheCanvasOfAnInterlacedFrameThatIsCutOff)
{
    GifImage tall = {0, 0, 1, 16, Indices({0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3})};
    tall.isInterlaced = true;
    ASSERT_EQ(Decode(GifBuilder(1, 3, kColors).Image(Plain(1, 3, 0)).Image(tall).Bytes()), 0);
    EXPECT_EQ(Frame(1).pixels, (Pixels{kBlack, kRed, kGreen}));
}

TEST_F(GifDecoding, KeepsTheTimeOfAFrameOutsideTheCanvas)
{
    ASSERT_EQ(Decode(GifBuilder(2, 2, kColors)
                         .Image(Plain(2, 2, 0))
                         .Control({2, 50})
                         .Image(Plain(2, 2, 1, 2, 0))
                         .Bytes()),
              0);
    ASSERT_EQ(FrameCount(), 2);
    EXPECT_EQ(Frame(1).delayTicks, 30);
    EXPECT_EQ(Frame(1).pixels, Pixels{kNoColor});
    EXPECT_EQ(Frame(1).disposal, kDisposalLeaveInPlace);
}

TEST_F(GifDecoding, ReadsOnBehindAFrameWithoutPixels)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors)
                         .Image(Plain(1, 1, 0))
                         .Image(Plain(0, 5, 1))
                         .Image(Plain(1, 1, 2))
                         .Bytes()),
              0);
    ASSERT_EQ(FrameCount(), 3);
    EXPECT_EQ(Frame(2).pixels, Pixels{kGreen});
}

TEST_F(GifDecoding, EnlargesTheCanvasForAFirstImageThatExceedsIt)
{
    ASSERT_EQ(Decode(GifBuilder(2, 4, kColors).Image(Plain(2, 1, 1, 1, 0)).Bytes()), 0);
    EXPECT_EQ(Frame(0).width, 3);
    EXPECT_EQ(Frame(0).height, 4);
    EXPECT_EQ(host_.told.at(0), "gotRect 0,0,4,2");
    EXPECT_EQ(host_.told.at(1), "gotRect 0,0,4,3");
}

TEST_F(GifDecoding, MakesTheCanvasOfTheFirstImageWhereTheHeaderHasNone)
{
    ASSERT_EQ(Decode(GifBuilder(0, 0, kColors).Image(Plain(3, 2, 1)).Bytes()), 0);
    EXPECT_EQ(host_.told.at(0), "gotRect 0,0,2,3");
}

TEST_F(GifDecoding, ReportsTheSizeBeforeAnyImageIsThere)
{
    const GifBuilder header(30, 20, kColors);
    const auto headerSize = static_cast<SInt32>(header.WithoutTrailer().size());
    std::vector<std::string> toldByThen;
    host_.onGetData = [&] {
        if (host_.arrived == headerSize)
            toldByThen = host_.told;
    };
    DecodeArriving(GifBuilder(header).Image(Plain(30, 20, 1)).Bytes(), {headerSize, 0, 0, 10000});
    EXPECT_EQ(toldByThen, std::vector<std::string>{"gotRect 0,0,20,30"});
}

TEST_F(GifDecoding, PutsInterlacedRowsInTheirPlaces)
{
    for (UInt16 height = 1; height <= 17; ++height) {
        GifImage image = {0, 0, 1, height, {}};
        image.isInterlaced = true;
        GifColorList colors;
        Pixels expected;
        for (UInt16 row = 0; row < height; ++row) {
            image.indices += static_cast<char>(row);
            colors.push_back(0x010203U * row);
            expected.push_back(0x010203U * row);
        }
        colors.resize(32);
        ASSERT_EQ(Decode(GifBuilder(1, height, colors).Image(image).Bytes()), 0);
        EXPECT_EQ(Frame(0).pixels, expected) << height << " rows";
    }
}

TEST_F(GifDecoding, LetsTheTransparentColourShowWhatIsBelow)
{
    ASSERT_EQ(Decode(GifBuilder(2, 1, kColors)
                         .Control({0, 0, 2})
                         .Image({0, 0, 2, 1, Indices({1, 2})})
                         .Control({0, 0, 1})
                         .Image({0, 0, 2, 1, Indices({1, 2})})
                         .Bytes()),
              0);
    EXPECT_EQ(Frame(0).pixels, (Pixels{kRed, kNoColor}));
    EXPECT_EQ(Frame(1).pixels, (Pixels{kNoColor, kGreen}));
    EXPECT_EQ(Image().frames[1]->transparent, 1);
    EXPECT_EQ(Image().frames[1]->transparentIndex, 1);
}

TEST_F(GifDecoding, GivesOpaqueLaterFramesNoMask)
{
    GifBuilder gif(1, 1, kColors);
    ASSERT_EQ(Decode(AddTwoFrames(gif).Bytes()), 0);
    EXPECT_EQ(Image().frames[1]->maskGWorld, nullptr);
    EXPECT_EQ(Image().frames[1]->transparent, 0);
}

TEST_F(GifDecoding, AppliesAControlToTheNextImageOnly)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors)
                         .Control({3, 100, 1, true})
                         .Image(Plain(1, 1, 1))
                         .Image(Plain(1, 1, 1))
                         .Bytes()),
              0);
    EXPECT_EQ(Frame(0).pixels, Pixels{kNoColor});
    EXPECT_EQ(Frame(0).disposal, 3);
    EXPECT_TRUE(Frame(0).userInput);
    EXPECT_EQ(Frame(0).delayTicks, 60);
    EXPECT_EQ(Frame(1).pixels, Pixels{kRed});
    EXPECT_EQ(Frame(1).disposal, 0);
    EXPECT_FALSE(Frame(1).userInput);
}

TEST_F(GifDecoding, KnowsTheDisposalMethodsAndTheOldNumberOfTheLast)
{
    const int expected[] = {0, 1, 2, 3, 3, 0, 0, 0};
    for (int mode = 0; mode < 8; ++mode) {
        ASSERT_EQ(Decode(GifBuilder(1, 1, kColors).Control({mode}).Image(Plain(1, 1, 1)).Bytes()),
                  0);
        EXPECT_EQ(Frame(0).disposal, expected[mode]) << mode;
    }
}

TEST_F(GifDecoding, ShowsFramesForTheirDelayAndThoseWithoutOneForATenthOfASecond)
{
    const std::pair<int, SInt32> delaysAndTicks[] = {
        {0, 6}, {1, 6}, {2, 1}, {10, 6}, {65535, 39321}};
    for (const auto& [delay, ticks] : delaysAndTicks) {
        ASSERT_EQ(
            Decode(GifBuilder(1, 1, kColors).Control({0, delay}).Image(Plain(1, 1, 1)).Bytes()), 0);
        EXPECT_EQ(Frame(0).delayTicks, ticks) << delay;
    }
}

TEST_F(GifDecoding, PlaysAnAnimationOnceUnlessTheFileSaysOtherwise)
{
    GifBuilder gif(1, 1, kColors);
    ASSERT_EQ(Decode(AddTwoFrames(gif).Bytes()), 0);
    EXPECT_TRUE(Image().looping);
    EXPECT_EQ(Image().loopCount, 1);
}

TEST_F(GifDecoding, PlaysOnceMoreThanItRepeats)
{
    for (const char* application : {"NETSCAPE2.0", "ANIMEXTS1.0"}) {
        GifBuilder gif(1, 1, kColors);
        gif.Repeats(4, application);
        ASSERT_EQ(Decode(AddTwoFrames(gif).Bytes()), 0);
        EXPECT_EQ(Image().loopCount, 5) << application;
    }
}

TEST_F(GifDecoding, RepeatsForEverWhereTheFileSaysNought)
{
    GifBuilder gif(1, 1, kColors);
    gif.Repeats(0);
    ASSERT_EQ(Decode(AddTwoFrames(gif).Bytes()), 0);
    EXPECT_EQ(Image().loopCount, 0);
}

TEST_F(GifDecoding, CountsLargeNumbersOfPlaysModulo65536AsTheImageDoes)
{
    for (const auto& [repeats, count] : {std::pair{40000, 40001 - 65536}, std::pair{65535, 0}}) {
        GifBuilder gif(1, 1, kColors);
        gif.Repeats(static_cast<UInt16>(repeats));
        ASSERT_EQ(Decode(AddTwoFrames(gif).Bytes()), 0);
        EXPECT_EQ(Image().loopCount, count) << repeats;
    }
}

TEST_F(GifDecoding, FindsTheNumberOfRepeatsBehindTheImages)
{
    GifBuilder gif(1, 1, kColors);
    ASSERT_EQ(Decode(AddTwoFrames(gif).Repeats(2).Bytes()), 0);
    EXPECT_EQ(Image().loopCount, 3);
}

TEST_F(GifDecoding, DoesNotTakeOtherApplicationsNumbersForRepeats)
{
    GifBuilder gif(1, 1, kColors);
    gif.Repeats(7, "SOMETHING12");
    ASSERT_EQ(Decode(AddTwoFrames(gif).Bytes()), 0);
    EXPECT_EQ(Image().loopCount, 1);
}

TEST_F(GifDecoding, DoesNotAnimateASingleFrame)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors).Repeats(0).Image(Plain(1, 1, 1)).Bytes()), 0);
    EXPECT_FALSE(Image().looping);
}

TEST_F(GifDecoding, TakesTheFirstCommentForTheObjects)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors)
                         .Comment("made in parts", 4)
                         .Image(Plain(1, 1, 1))
                         .Comment("another")
                         .Bytes()),
              0);
    EXPECT_EQ(Comment(), "made in parts");
}

TEST_F(GifDecoding, LeavesTheMimeTypeAloneHoweverLongTheComment)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors)
                         .Comment(std::string(10000, 'x'))
                         .Image(Plain(1, 1, 1))
                         .Bytes()),
              0);
    EXPECT_EQ(Comment(), std::string(255, 'x'));
    EXPECT_STREQ(Image().MimeType(), "image/gif");
}

TEST_F(GifDecoding, TellsTheBackgroundOnlyWhereNothingIsTransparent)
{
    GifBuilder opaque(1, 1, kColors, 2);
    ASSERT_EQ(Decode(AddTwoFrames(opaque).Bytes()), 0);
    EXPECT_TRUE(Image().hasBackgroundColor);
    EXPECT_EQ(Image().backgroundColor.green, 0xFFFF);
    EXPECT_EQ(Image().backgroundColor.red, 0);

    GifBuilder transparent(1, 1, kColors, 2);
    ASSERT_EQ(Decode(AddTwoFrames(transparent.Control({0, 0, 1})).Bytes()), 0);
    EXPECT_FALSE(Image().hasBackgroundColor);
}

TEST_F(GifDecoding, TellsNoBackgroundThatTheGlobalTableHasNot)
{
    GifBuilder outside(1, 1, kColors, 4);
    ASSERT_EQ(Decode(AddTwoFrames(outside).Bytes()), 0);
    EXPECT_FALSE(Image().hasBackgroundColor);
}

TEST_F(GifDecoding, PassesOverExtensionsItDoesNotKnow)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors)
                         .Raw(std::string("!\x01\x02"
                                          "ab\x03"
                                          "cde\0",
                                          10))
                         .Raw(std::string("!\x55\0", 3))
                         .Image(Plain(1, 1, 1))
                         .Bytes()),
              0);
    EXPECT_EQ(FrameCount(), 1);
}

TEST_F(GifDecoding, EndsAtTheTrailerWhateverFollows)
{
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors).Image(Plain(1, 1, 1)).Bytes() + "rubbish"), 0);
    EXPECT_EQ(FrameCount(), 1);
}

TEST_F(GifDecoding, NeedsNoTrailer)
{
    EXPECT_EQ(Decode(GifBuilder(1, 1, kColors).Image(Plain(1, 1, 1)).WithoutTrailer()), 0);
    EXPECT_EQ(FrameCount(), 1);
}

TEST_F(GifDecoding, DecodesLongRunsAndFullCodeTables)
{
    constexpr UInt16 kSide = 300;
    GifImage image = Plain(kSide, kSide, 0);
    GifColorList colors;
    Pixels expected;
    for (UInt32 i = 0; i < 256; ++i)
        colors.push_back(i << 16 | (255 - i) << 8 | (i * 7 & 0xFF));
    UInt32 state = 1;
    for (char& index : image.indices) {
        state = state * 1664525 + 1013904223;
        index = static_cast<char>((state >> 28) != 0 ? 5 : state >> 20 & 0xFF);
        expected.push_back(colors[static_cast<UInt8>(index)]);
    }
    ASSERT_EQ(Decode(GifBuilder(kSide, kSide, colors).Image(image).Bytes()), 0);
    EXPECT_TRUE(Frame(0).pixels == expected);
}

TEST_F(GifDecoding, TakesCodesThatBeginLongerThanIndicesAre)
{
    const std::string record = {',',    0, 0, 0,      0, 1, 0, 1, 0, 0, // 1x1 pixels
                                '\x0B', 5, 0, '\x28', 0, 1, 8,          // to clear, 2, to end
                                0};
    ASSERT_EQ(Decode(GifBuilder(1, 1, kColors).Raw(record).Bytes()), 0);
    EXPECT_EQ(Frame(0).pixels, Pixels{kGreen});
}

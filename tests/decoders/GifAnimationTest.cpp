// SPDX-License-Identifier: MIT
//
// What a window shows of an animated GIF, frame after frame.
#include "tests/decoders/GifTest.h"

using namespace test;

namespace
{

const GifColorList kColors = {kBlack, kRed, kGreen, kWhite};

GifImage Plain(UInt16 width, UInt16 height, char index, UInt16 left = 0, UInt16 top = 0)
{
    return {left, top, width, height, std::string(size_t{width} * height, index)};
}

// Three pixels in a row: all black, then the second one red, disposed of by `control`, then the
// third one green.
class GifAnimation : public GifTest
{
protected:
    // The three pictures of the first loop.
    std::vector<Pixels> Play(const GifControl& control)
    {
        const std::string file = GifBuilder(3, 1, kColors)
                                     .Image(Plain(3, 1, 0))
                                     .Control(control)
                                     .Image(Plain(1, 1, 1, 1, 0))
                                     .Image(Plain(1, 1, 2, 2, 0))
                                     .Bytes();
        EXPECT_EQ(Decode(file), 0);
        OpenWindow();
        Display();
        std::vector<Pixels> pictures;
        for (int i = 0; i < 3; ++i) {
            IdleOnce();
            pictures.push_back(WindowPixels());
        }
        return pictures;
    }
};

} // namespace

TEST_F(GifAnimation, LeavesAFrameInPlace)
{
    for (const int disposal : {0, 1}) {
        EXPECT_EQ(Play({disposal, 10}),
                  (std::vector<Pixels>{
                      {kBlack, kBlack, kBlack}, {kBlack, kRed, kBlack}, {kBlack, kRed, kGreen}}));
    }
}

TEST_F(GifAnimation, PutsTheFilesBackgroundInAFramesPlace)
{
    EXPECT_EQ(Play({2, 10}).back(), (Pixels{kBlack, kBlack, kGreen}));
}

TEST_F(GifAnimation, PutsWhiteInAFramesPlaceWhereAnythingIsTransparent)
{
    EXPECT_EQ(Play({2, 10, 3}).back(), (Pixels{kBlack, kWhite, kGreen}));
}

TEST_F(GifAnimation, PutsWhatWasThereBeforeInAFramesPlace)
{
    EXPECT_EQ(Play({3, 10}),
              (std::vector<Pixels>{
                  {kBlack, kBlack, kBlack}, {kBlack, kRed, kBlack}, {kBlack, kBlack, kGreen}}));
}

TEST_F(GifAnimation, KeepsTheTimesOfItsFrames)
{
    Play({0, 50});
    EXPECT_EQ(Image().frames[1]->delayTicks, 30);
    EXPECT_EQ(Image().animationDone, 1); // one play: that was all
}

TEST_F(GifAnimation, RestoresWhatAFrameWithoutAllItsRowsHidesNot)
{
    const std::string file = GifBuilder(1, 2, kColors)
                                 .Image(Plain(1, 2, 1))
                                 .Image({0, 0, 1, 2, std::string(1, 2)})
                                 .Bytes();
    Decode(file);
    OpenWindow();
    Display();
    IdleOnce();
    IdleOnce();
    EXPECT_EQ(WindowPixels(), (Pixels{kGreen, kRed}));
}

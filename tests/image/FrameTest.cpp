// SPDX-License-Identifier: MIT
//
// One frame: what it keeps, what it owns, and the picture made of it.
#include "tests/support/ScriptedImageTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using TFrame = VornImagePlugin::TFrame;

namespace
{

class ImageFrame : public test::ScriptedImageTest
{
protected:
    GWorldPtr NewWorld() { return test::Graphics().NewWorld({2, 3, 12, 23}, 8); }
    PicHandle PictureOf(const TFrame& frame)
    {
        PicHandle picture = test::ScriptedGraphics::ThePicture();
        frame.GetFramePictHandle(&picture);
        return picture;
    }
};

} // namespace

TEST_F(ImageFrame, StartsAtTheImagesOriginWithoutDelayOrDisposal)
{
    GWorldPtr world = NewWorld();
    const TFrame frame(world, 8, nullptr, 0);
    EXPECT_EQ(frame.gworld, world);
    EXPECT_EQ(frame.maskGWorld, nullptr);
    EXPECT_EQ(frame.displayPosition.v, 0);
    EXPECT_EQ(frame.displayPosition.h, 0);
    EXPECT_EQ(frame.delayTicks, 0);
    EXPECT_EQ(frame.disposalMethod, kDisposalUnspecified);
    EXPECT_EQ(frame.userInput, 0);
    EXPECT_EQ(frame.transparent, 0);
    EXPECT_EQ(frame.transparentIndex, -1);
    EXPECT_EQ(frame.depth, 8);
    EXPECT_EQ(frame.maskDepth, 0);
}

TEST_F(ImageFrame, IsTransparentWhenItsMaskHasADepth)
{
    GWorldPtr mask = NewWorld();
    const TFrame frame(nullptr, 0, mask, 1);
    EXPECT_EQ(frame.maskGWorld, mask);
    EXPECT_EQ(frame.maskDepth, 1);
    EXPECT_EQ(frame.transparent, 1);
}

TEST_F(ImageFrame, KeepsItsFieldsInTheirOrder)
{
    const TFrame frame(nullptr, 0, nullptr, 0);
    const auto* start = reinterpret_cast<const char*>(&frame);
    const auto place = [&](const auto& field) {
        return reinterpret_cast<const char*>(&field) - start;
    };
    EXPECT_THAT(
        (std::vector<std::ptrdiff_t>{place(frame.gworld), place(frame.maskGWorld),
                                     place(frame.displayPosition), place(frame.delayTicks),
                                     place(frame.disposalMethod), place(frame.userInput),
                                     place(frame.transparent), place(frame.transparentIndex),
                                     place(frame.depth), place(frame.maskDepth)}),
        ElementsAre(0, sizeof(void*), 2 * sizeof(void*), 2 * sizeof(void*) + 4,
                    2 * sizeof(void*) + 8, 2 * sizeof(void*) + 9, 2 * sizeof(void*) + 10,
                    2 * sizeof(void*) + 12, 2 * sizeof(void*) + 14, 2 * sizeof(void*) + 16));
    EXPECT_EQ(sizeof frame.disposalMethod, 1U);
}

TEST_F(ImageFrame, DisposesOfItsPixelsAndThenOfItsMask)
{
    GWorldPtr pixels = NewWorld();
    GWorldPtr mask = NewWorld();
    {
        const TFrame frame(pixels, 8, mask, 1);
    }
    EXPECT_THAT(Calls({"DisposeGWorld"}),
                ElementsAre("DisposeGWorld world1", "DisposeGWorld world2"));
}

TEST_F(ImageFrame, DisposesOfNothingThatItDoesNotHave)
{
    {
        const TFrame frame(nullptr, 8, nullptr, 0);
    }
    EXPECT_THAT(Calls({"DisposeGWorld"}), IsEmpty());
}

TEST_F(ImageFrame, DisposesOfTheWorldThatAnotherOneReplaces)
{
    TFrame frame(NewWorld(), 8, nullptr, 0);
    GWorldPtr other = NewWorld();
    frame.SetGWorld(other);
    EXPECT_EQ(frame.gworld, other);
    EXPECT_THAT(Calls({"DisposeGWorld"}), ElementsAre("DisposeGWorld world1"));
}

TEST_F(ImageFrame, KeepsTheWorldThatItIsGivenAgain)
{
    GWorldPtr world = NewWorld();
    TFrame frame(world, 8, nullptr, 0);
    frame.SetGWorld(world);
    EXPECT_EQ(frame.gworld, world);
    EXPECT_THAT(Calls({"DisposeGWorld"}), IsEmpty());
}

TEST_F(ImageFrame, HasNoWorldLeftAfterNull)
{
    TFrame frame(NewWorld(), 8, nullptr, 0);
    frame.SetGWorld(nullptr);
    EXPECT_EQ(frame.gworld, nullptr);
    EXPECT_THAT(Calls({"DisposeGWorld"}), ElementsAre("DisposeGWorld world1"));
}

TEST_F(ImageFrame, TakesAWorldWhereItHadNone)
{
    TFrame frame(nullptr, 8, nullptr, 0);
    GWorldPtr world = NewWorld();
    frame.SetGWorld(world);
    EXPECT_EQ(frame.gworld, world);
    EXPECT_THAT(Calls({"DisposeGWorld"}), IsEmpty());
}

TEST_F(ImageFrame, TreatsItsMaskInTheSameWay)
{
    GWorldPtr mask = NewWorld();
    TFrame frame(nullptr, 8, mask, 1);
    frame.SetMaskGWorld(mask);
    EXPECT_THAT(Calls({"DisposeGWorld"}), IsEmpty());
    frame.SetMaskGWorld(NewWorld());
    EXPECT_THAT(Calls({"DisposeGWorld"}), ElementsAre("DisposeGWorld world1"));
    frame.SetMaskGWorld(nullptr);
    EXPECT_EQ(frame.maskGWorld, nullptr);
    EXPECT_THAT(Calls({"DisposeGWorld"}),
                ElementsAre("DisposeGWorld world1", "DisposeGWorld world2"));
}

TEST_F(ImageFrame, KeepsItsDepthsWhateverWorldsItGets)
{
    TFrame frame(nullptr, 8, nullptr, 4);
    frame.SetGWorld(test::Graphics().NewWorld({0, 0, 1, 1}, 32));
    frame.SetMaskGWorld(test::Graphics().NewWorld({0, 0, 1, 1}, 1));
    EXPECT_EQ(frame.depth, 8);
    EXPECT_EQ(frame.maskDepth, 4);
}

TEST_F(ImageFrame, StoresWhatItIsTold)
{
    TFrame frame(nullptr, 8, nullptr, 0);
    frame.SetDisplayPosition({5, -6});
    frame.SetTransparency(2, 17);
    frame.SetUserInput(0x80);
    frame.SetDisposalMethod(-1);
    EXPECT_EQ(frame.displayPosition.v, 5);
    EXPECT_EQ(frame.displayPosition.h, -6);
    EXPECT_EQ(frame.transparent, 2);
    EXPECT_EQ(frame.transparentIndex, 17);
    EXPECT_EQ(frame.userInput, 0x80);
    EXPECT_EQ(frame.disposalMethod, -1);
}

TEST_F(ImageFrame, KeepsItsDelayInWholeTicks)
{
    TFrame frame(nullptr, 8, nullptr, 0);
    const auto ticks = [&](UInt16 hundredths) {
        frame.SetDelay(hundredths);
        return frame.delayTicks;
    };
    EXPECT_EQ(ticks(7), 4);
    EXPECT_EQ(ticks(0), 0);
    EXPECT_EQ(ticks(1), 0);
    EXPECT_EQ(ticks(5), 3);
    EXPECT_EQ(ticks(10), 6);
    EXPECT_EQ(ticks(65535), 39321);
}

TEST_F(ImageFrame, HasTheBoundsOfItsPixels)
{
    const TFrame frame(NewWorld(), 8, nullptr, 0);
    Rect bounds{};
    frame.GetBounds(bounds);
    EXPECT_EQ(test::Text(bounds), "2,3,12,23");
}

TEST_F(ImageFrame, LeavesTheRectangleAloneWithoutPixels)
{
    const TFrame frame(nullptr, 8, nullptr, 0);
    Rect bounds = {1, 2, 3, 4};
    frame.GetBounds(bounds);
    EXPECT_EQ(test::Text(bounds), "1,2,3,4");
}

TEST_F(ImageFrame, RecordsItsPixelsOverThemselvesAsItsPicture)
{
    const TFrame frame(NewWorld(), 8, nullptr, 0);
    EXPECT_EQ(PictureOf(frame), test::ScriptedGraphics::ThePicture());
    EXPECT_THAT(Calls({"LockPixels", "GetGWorld", "SetGWorld", "OpenPicture", "ForeColor",
                       "BackColor", "CopyBits", "ClosePicture", "UnlockPixels"}),
                ElementsAre("LockPixels world1", "GetGWorld", "SetGWorld world1",
                            "OpenPicture world1 2,3,12,23", "ForeColor world1 33",
                            "BackColor world1 30",
                            "CopyBits world1 2,3,12,23 world1 2,3,12,23 64 everywhere",
                            "ClosePicture", "SetGWorld page", "UnlockPixels world1"));
}

TEST_F(ImageFrame, HasNoPictureWithoutPixels)
{
    const TFrame frame(nullptr, 8, nullptr, 0);
    EXPECT_EQ(PictureOf(frame), nullptr);
    EXPECT_EQ(probe.Count("OpenPicture"), 0);
}

TEST_F(ImageFrame, HasNoPictureOfPixelsThatCannotBeLocked)
{
    const TFrame frame(NewWorld(), 8, nullptr, 0);
    probe.Fail("LockPixels", memFullErr);
    EXPECT_EQ(PictureOf(frame), nullptr);
    EXPECT_THAT(Calls({"SetGWorld", "OpenPicture", "CopyBits", "ClosePicture", "UnlockPixels"}),
                IsEmpty());
}

TEST_F(ImageFrame, ClosesNoPictureThatItCouldNotOpen)
{
    const TFrame frame(NewWorld(), 8, nullptr, 0);
    probe.Fail("OpenPicture", memFullErr);
    EXPECT_EQ(PictureOf(frame), nullptr);
    EXPECT_THAT(Calls({"CopyBits", "ClosePicture", "SetGWorld", "UnlockPixels"}),
                ElementsAre("SetGWorld world1", "SetGWorld page", "UnlockPixels world1"));
}

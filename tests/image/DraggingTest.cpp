// SPDX-License-Identifier: MIT
//
// Dragging an image out, and its data.
#include "tests/support/ScriptedImageTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

class DraggedImage : public test::ScriptedImageTest
{
protected:
    // An image of one frame, as high and as wide as that.
    void Make(SInt16 height, SInt16 width) { MakeIn({0, 0, height, width}); }
    void MakeIn(const Rect& bounds)
    {
        image->SetDisplayRect(bounds);
        AddFrame(0, bounds);
        image->SetDisplayFlags(kVornDisplayScale);
        FinishDecoding();
    }
    void Prepare(const Rect& area)
    {
        probe.Forget();
        image->PrepareDrag(nullptr, 7, area, flag);
    }
    std::string DragImage() const
    {
        const auto calls = Calls({"SetDragImage"});
        return calls.empty() ? "none" : calls.front();
    }

    unsigned char flag = 9;
};

class DataOfImage : public test::ScriptedImageTest
{
protected:
    // A picture that GetData must overwrite or leave alone.
    char* master = nullptr;
    Handle untouched = &master;
    Handle data = untouched;
    UInt32 type = 0;
};

} // namespace

TEST_F(DraggedImage, PromisesAPicture)
{
    Make(40, 20);
    Prepare({0, 0, 40, 20});
    EXPECT_THAT(Calls({"AddDragItemFlavor"}), ElementsAre("AddDragItemFlavor 7 PICT promised 0 0"));
}

TEST_F(DraggedImage, ThrowsWhyTheFlavorCannotBeAdded)
{
    Make(40, 20);
    probe.Fail("AddDragItemFlavor", -4321);
    EXPECT_EQ(test::ErrorOf([&] { Prepare({0, 0, 40, 20}); }), -4321);
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(DragImage(), "none");
}

TEST_F(DraggedImage, ThrowsForACurrentFrameThatThereIsNot)
{
    Make(40, 20);
    for (const SInt16 wrong : {SInt16{-1}, SInt16{1}}) {
        image->curFrame = wrong;
        flag = 9;
        EXPECT_EQ(test::ErrorOf([&] { Prepare({0, 0, 40, 20}); }), paramErr);
        EXPECT_EQ(flag, 0);
        EXPECT_EQ(probe.Count("AddDragItemFlavor"), 1);
    }
}

TEST_F(DraggedImage, HasNoImageWithoutPixels)
{
    Make(40, 20);
    image->SetFrameGWorld(0, nullptr);
    Prepare({0, 0, 40, 20});
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(DragImage(), "none");
}

TEST_F(DraggedImage, IsItsOwnImageInTheMiddleOfItsPlace)
{
    Make(40, 20);
    Prepare({100, 200, 160, 240});
    EXPECT_EQ(DragImage(), "SetDragImage world1 everywhere 110 210 17");
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(image->dragGWorld, nullptr);
}

TEST_F(DraggedImage, PlacesItsImageOnTheScreen)
{
    Make(40, 20);
    test::Graphics().pageOnScreen = {1000, 2000};
    Prepare({100, 200, 160, 240});
    EXPECT_EQ(DragImage(), "SetDragImage world1 everywhere 1110 2210 17");
}

TEST_F(DraggedImage, HasAnImageWhateverBecomesOfIt)
{
    Make(40, 20);
    probe.Fail("SetDragImage", memFullErr);
    Prepare({0, 0, 40, 20});
    EXPECT_EQ(flag, 1);
}

TEST_F(DraggedImage, IsDraggedAtFullSizeUpTo60000Pixels)
{
    Make(200, 300);
    Prepare({0, 0, 200, 300});
    EXPECT_EQ(DragImage(), "SetDragImage world1 everywhere 0 0 17");
    EXPECT_THAT(Calls({"NewGWorld"}), IsEmpty());
}

TEST_F(DraggedImage, IsFittedIntoABoxAbove60000Pixels)
{
    Make(201, 300);
    Prepare({0, 0, 201, 300});
    // In single precision 120 / 201 of 201 is just below 120. The box stands at 41,50 of the frame.
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 0 0,0,119,179 no-colors 4"));
    EXPECT_EQ(DragImage(), "SetDragImage world2 everywhere 42 61 17");
    EXPECT_EQ(image->dragGWorld, test::Graphics().World(2));
    EXPECT_EQ(flag, 1);
}

TEST_F(DraggedImage, IsFittedIntoABoxWithASinglePixelMore)
{
    Make(29, 2069);
    Prepare({0, 0, 29, 2069});
    EXPECT_THAT(Calls({"NewGWorld"}), SizeIs(1));
}

TEST_F(DraggedImage, MovesTheFittedImageWithItsPlaceOnTheScreen)
{
    Make(400, 400);
    test::Graphics().pageOnScreen = {1000, 2000};
    Prepare({10, 20, 410, 420});
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 0 0,0,120,120 no-colors 4"));
    EXPECT_EQ(DragImage(), "SetDragImage world2 everywhere 1150 2160 17");
}

TEST_F(DraggedImage, MovesTheFittedImageByWhereTheBoxStandsInTheBounds)
{
    MakeIn({1000, 2000, 1400, 2400});
    Prepare({0, 0, 400, 400});
    EXPECT_EQ(DragImage(), "SetDragImage world2 everywhere 1140 2140 17");
}

TEST_F(DraggedImage, IsFittedIntoABoxWithMorePixelsThan32BitsCount)
{
    MakeIn({-32768, -32768, 32767, 32767});
    Prepare({0, 0, 400, 400});
    EXPECT_EQ(probe.Count("NewGWorld"), 1);
}

TEST_F(DraggedImage, IsPlacedOnThePageBeforeItIsFittedAndHandedOutAfterwards)
{
    Make(400, 400);
    Prepare({0, 0, 400, 400});
    EXPECT_THAT(Calls({"AddDragItemFlavor", "LocalToGlobal", "NewGWorld", "SetGWorld", "CopyBits",
                       "SetDragImage"}),
                ElementsAre("AddDragItemFlavor 7 PICT promised 0 0", "LocalToGlobal page",
                            "NewGWorld 0 0,0,120,120 no-colors 4", "SetGWorld world2",
                            "SetGWorld page", "SetGWorld world2",
                            "CopyBits world1 0,0,400,400 world2 0,0,120,120 64 everywhere",
                            "SetGWorld page", "SetDragImage world2 everywhere 140 140 17"));
}

TEST_F(DraggedImage, MakesTheFittedImageInTemporaryMemoryEvenIfTheImageUsesNone)
{
    Make(400, 400);
    image->usesTempMem = 0;
    Prepare({0, 0, 400, 400});
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 0 0,0,120,120 no-colors 4"));
}

TEST_F(DraggedImage, DrawsItselfIntoTheFittedImage)
{
    Make(400, 400);
    image->InvalidateRow(3); // and yet all of it
    Prepare({0, 0, 400, 400});
    EXPECT_EQ(Copies().back(), "CopyBits world1 0,0,400,400 world2 0,0,120,120 64 everywhere");
    EXPECT_EQ(Calls({"SetGWorld"}).back(), "SetGWorld page");
}

TEST_F(DraggedImage, IsDraggedWithoutAnImageWhenItCannotBeMade)
{
    Make(400, 400);
    probe.Fail("NewGWorld", memFullErr);
    EXPECT_NO_THROW(Prepare({0, 0, 400, 400}));
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(DragImage(), "none");
    EXPECT_EQ(image->dragGWorld, nullptr);
}

TEST_F(DraggedImage, PutsTheWorldBackWhenDrawingTheFittedImageThrows)
{
    Make(400, 400);
    image->SetLooping(1, 0);
    probe.Fail("NewGWorld", -4321, 2); // the composite
    EXPECT_EQ(test::ErrorOf([&] { Prepare({0, 0, 400, 400}); }), -4321);
    EXPECT_EQ(test::Graphics().current, test::Graphics().Page());
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(DragImage(), "none");
    EXPECT_NE(image->dragGWorld, nullptr);
}

TEST_F(DraggedImage, DisposesOfTheFittedImageOnce)
{
    Make(400, 400);
    Prepare({0, 0, 400, 400});
    probe.Forget();
    image->CleanupDrag();
    image->CleanupDrag();
    EXPECT_THAT(Calls({"DisposeGWorld"}), ElementsAre("DisposeGWorld world2"));
    EXPECT_EQ(image->dragGWorld, nullptr);
}

TEST_F(DraggedImage, DisposesOfTheFittedImageWhenItIsDestroyed)
{
    Make(400, 400);
    Prepare({0, 0, 400, 400});
    image.reset();
    EXPECT_THAT(Calls({"DisposeGWorld"}),
                ElementsAre("DisposeGWorld world1", "DisposeGWorld world2"));
}

TEST_F(DraggedImage, LosesAFittedImageThatWasNotCleanedUp)
{
    Make(400, 400);
    Prepare({0, 0, 400, 400});
    Prepare({0, 0, 400, 400});
    EXPECT_EQ(image->dragGWorld, test::Graphics().World(3));
    image.reset();
    EXPECT_TRUE(test::Graphics().World(2)->alive);
    EXPECT_FALSE(test::Graphics().World(3)->alive);
}

TEST_F(DataOfImage, IsAPictureEvenWithoutFrames)
{
    image->curFrame = 5;
    image->GetData(type, nullptr);
    EXPECT_EQ(type, 0x50494354U);
}

TEST_F(DataOfImage, TouchesNoFrameWhenOnlyItsTypeIsAskedFor)
{
    AddFrame();
    probe.Forget();
    image->GetData(type, nullptr);
    EXPECT_EQ(type, 0x50494354U);
    EXPECT_THAT(Calls({"LockPixels", "OpenPicture"}), IsEmpty());
}

TEST_F(DataOfImage, IsNotThereBeforeTheFirstFrame)
{
    image->GetData(type, &data);
    EXPECT_EQ(type, 0x50494354U);
    EXPECT_EQ(data, untouched);
}

TEST_F(DataOfImage, ThrowsForACurrentFrameThatThereIsNot)
{
    AddFrame();
    image->curFrame = 1;
    EXPECT_EQ(test::ErrorOf([&] { image->GetData(type, &data); }), paramErr);
    EXPECT_EQ(type, 0x50494354U);
    EXPECT_EQ(data, untouched);
}

TEST_F(DataOfImage, IsNotThereForAnEmptySlot)
{
    image->frames.Append(nullptr);
    image->curFrame = 0;
    image->GetData(type, &data);
    EXPECT_EQ(data, untouched);
}

TEST_F(DataOfImage, IsAPictureOfTheCurrentFrame)
{
    AddFrame();
    AddFrame(0, {0, 0, 5, 6});
    image->curFrame = 1;
    image->GetData(type, &data);
    EXPECT_EQ(data, reinterpret_cast<Handle>(test::ScriptedGraphics::ThePicture()));
    EXPECT_THAT(Calls({"OpenPicture"}), ElementsAre("OpenPicture world2 0,0,5,6"));
}

TEST_F(DataOfImage, IsNullForAFrameWhosePixelsCannotBeHad)
{
    AddFrame();
    probe.Fail("LockPixels", memFullErr);
    image->GetData(type, &data);
    EXPECT_EQ(data, nullptr);
    data = untouched;
    image->SetFrameGWorld(0, nullptr);
    image->GetData(type, &data);
    EXPECT_EQ(data, nullptr);
}

// SPDX-License-Identifier: MIT
//
// Drawing one frame of an animation through its composite, call by call.
#include "tests/support/ScriptedImageTest.h"
#include "toolbox/memory/Memory.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using Method = VornImagePlugin::TDisposalMethod;

constexpr Rect kArea = {100, 200, 140, 220};

// Frame 0 covers the image, frame 1 a part of it; frame 1 is shown. The composite is there.
class AnimatedImage : public test::ScriptedImageTest
{
protected:
    void SetUp() override
    {
        AddFrame();
        image->SetLooping(1, 0);
        image->compositeGWorld = test::Graphics().NewWorld(kImageRect, 16);
        image->FinishRendering();
    }
    // The frame shown; its world is world3, its mask's world4.
    void AddPart(UInt16 maskDepth, Method method)
    {
        const SInt16 index = AddFrame(maskDepth, {0, 0, 10, 8});
        image->SetFrameDisplayPos(index, {20, 6});
        image->SetFrameDisposalMethod(index, method);
        image->curFrame = index;
    }
    void RemovePart()
    {
        delete image->frames[1];
        image->frames.count = 1;
        image->frameCount = 1;
    }
    void Draw(unsigned char full = true, const Rect& area = kArea)
    {
        probe.Forget();
        image->DrawImage(area, full);
    }
    // Only the new rows, drawn as a host does it.
    void DrawRows(SInt16 top, SInt16 bottom)
    {
        image->invalidTop = top;
        image->invalidBottom = bottom;
        Draw(false);
    }
    void ThrowIn(const std::string& operation)
    {
        probe.onCall = [operation](const std::string& call) {
            if (call.rfind(operation, 0) == 0)
                throw OSErr{-4321};
        };
    }
    void ExpectAllPutBack()
    {
        EXPECT_FALSE(test::Graphics().AnyLocked());
        EXPECT_EQ(test::Graphics().current, test::Graphics().Page());
    }
};

constexpr char kFrameToComposite[] = "CopyBits world3 0,0,10,8 world2 20,6,30,14 64 everywhere";
constexpr char kCompositeToPage[] = "CopyBits world2 0,0,40,20 page 100,200,140,220 64 everywhere";

} // namespace

TEST_F(AnimatedImage, LocksSwitchesAndCopiesInOrder)
{
    AddPart(0, kDisposalUnspecified);
    Draw();
    EXPECT_THAT(Calls({"GetGWorld", "SetGWorld", "LockPixels", "UnlockPixels", "GetPixelsState",
                       "SetPixelsState", "ForeColor", "BackColor", "CopyBits"}),
                ElementsAre("LockPixels world2", "GetGWorld", "SetGWorld world2",
                            "ForeColor world2 33", "BackColor world2 30", "GetPixelsState world3",
                            "LockPixels world3", kFrameToComposite, "SetPixelsState world3 0",
                            "SetGWorld page", kCompositeToPage, "GetGWorld", "SetGWorld world2",
                            "UnlockPixels world2", "SetGWorld page"));
}

TEST_F(AnimatedImage, DrawsThroughAOneBitMask)
{
    AddPart(1, kDisposalUnspecified);
    Draw();
    EXPECT_THAT(Copies(), ElementsAre("CopyMask world3 0,0,10,8 world4 0,0,10,8 world2 20,6,30,14",
                                      kCompositeToPage));
}

TEST_F(AnimatedImage, DrawsThroughADeepMask)
{
    AddPart(8, kDisposalUnspecified);
    Draw();
    EXPECT_THAT(Copies(), ElementsAre("CopyDeepMask world3 0,0,10,8 world4 0,0,10,8 world2 "
                                      "20,6,30,14 64 everywhere",
                                      kCompositeToPage));
}

TEST_F(AnimatedImage, MakesItsCompositeOnceWithSixteenBits)
{
    image->compositeGWorld = nullptr;
    AddPart(0, 0);
    Draw();
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 16 0,0,40,20 no-colors 4"));
    EXPECT_NE(image->compositeGWorld, nullptr);
    Draw();
    EXPECT_THAT(Calls({"NewGWorld"}), IsEmpty());
}

TEST_F(AnimatedImage, MakesItsCompositeInTheMemoryThatItUses)
{
    image->compositeGWorld = nullptr;
    image->usesTempMem = 0;
    Draw();
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 16 0,0,40,20 no-colors 0"));
}

TEST_F(AnimatedImage, ComposesInItsOwnRectangleWhereverThatBegins)
{
    image->SetDisplayRect({5, 3, 45, 23});
    image->compositeGWorld = nullptr;
    AddPart(0, 0);
    Draw();
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 16 5,3,45,23 no-colors 4"));
    EXPECT_EQ(Copies().back(), "CopyBits world4 5,3,45,23 page 100,200,140,220 64 everywhere");
    Draw(false);
    EXPECT_EQ(Copies().back(), "CopyBits world4 20,6,30,14 page 115,203,125,211 64 everywhere");
}

TEST_F(AnimatedImage, MakesAColorTableWithWhiteForItsCompositeAndThrowsItAway)
{
    image->compositeGWorld = nullptr;
    image->SetColorTable(reinterpret_cast<CTabHandle>(NewHandleClear(16)));
    AddPart(0, 0);
    Draw();
    EXPECT_THAT(Calls({"NewHandleClear", "GetCTSeed", "NewGWorld", "DisposeHandle"}),
                ElementsAre("NewHandleClear", "GetCTSeed", "NewGWorld 16 0,0,40,20 no-colors 4",
                            "DisposeHandle"));
}

TEST_F(AnimatedImage, ThrowsWhyItsCompositeCannotBeMade)
{
    image->compositeGWorld = nullptr;
    image->SetColorTable(reinterpret_cast<CTabHandle>(NewHandleClear(16)));
    probe.Fail("NewGWorld", -4321);
    EXPECT_EQ(test::ErrorOf([&] { Draw(); }), -4321);
    EXPECT_EQ(image->compositeGWorld, nullptr);
    EXPECT_EQ(probe.Count("DisposeHandle"), 1);
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(AnimatedImage, ThrowsWhenThereIsNoMemoryForTheColorTable)
{
    image->compositeGWorld = nullptr;
    image->SetColorTable(reinterpret_cast<CTabHandle>(NewHandleClear(16)));
    probe.Fail("NewHandleClear", memFullErr);
    EXPECT_EQ(test::ErrorOf([&] { Draw(); }), memFullErr);
    EXPECT_EQ(image->compositeGWorld, nullptr);
}

TEST_F(AnimatedImage, KeepsItsNewRowsWhenItsCompositeCannotBeMade)
{
    image->compositeGWorld = nullptr;
    probe.Fail("NewGWorld", -4321);
    EXPECT_EQ(test::ErrorOf([&] { DrawRows(3, 5); }), -4321);
    EXPECT_EQ(image->invalidTop, 3);
    EXPECT_EQ(image->invalidBottom, 5);
}

TEST_F(AnimatedImage, HasNotBeenDisplayedWhenItsCompositeCannotBeMade)
{
    image->compositeGWorld = nullptr;
    probe.Fail("NewGWorld", -4321);
    EXPECT_EQ(test::ErrorOf([&] { image->Display(kArea, 0); }), -4321);
    EXPECT_EQ(image->hasDisplayed, 0);
}

TEST_F(AnimatedImage, IsNotDrawnWhenItsCompositeCannotBeLocked)
{
    AddPart(0, kDisposalRestoreBackground);
    probe.Fail("LockPixels", memFullErr);
    Draw();
    EXPECT_THAT(Calls({"SetGWorld", "CopyBits", "EraseRect", "UnlockPixels"}), IsEmpty());
}

TEST_F(AnimatedImage, ShowsItsCompositeWhenTheFrameCannotBeLocked)
{
    AddPart(0, 0);
    probe.Fail("LockPixels", memFullErr, 2);
    Draw();
    EXPECT_THAT(Copies(), ElementsAre(kCompositeToPage));
}

TEST_F(AnimatedImage, ShowsItsCompositeWhenTheMaskCannotBeLocked)
{
    AddPart(1, 0);
    probe.Fail("LockPixels", memFullErr, 3);
    Draw();
    EXPECT_THAT(Copies(), ElementsAre(kCompositeToPage));
    ExpectAllPutBack();
}

TEST_F(AnimatedImage, ShowsOnlyTheFramesPlaceWhenNotDrawnInFull)
{
    AddPart(0, 0);
    Draw(false);
    EXPECT_THAT(Copies(),
                ElementsAre(kFrameToComposite,
                            "CopyBits world2 20,6,30,14 page 120,206,130,214 64 everywhere"));
}

TEST_F(AnimatedImage, MapsTheFramesPlaceFromTheImageToTheScreen)
{
    AddPart(0, 0);
    image->SetDisplayFlags(kVornDisplayScale);
    Draw(false, {0, 0, 80, 60});
    EXPECT_THAT(Copies(), ElementsAre(kFrameToComposite,
                                      "CopyBits world2 20,6,30,14 page 40,18,60,42 64 everywhere"));
}

TEST_F(AnimatedImage, ComposesOnlyNewRowsWhenNotDrawnInFull)
{
    AddPart(0, 0);
    DrawRows(3, 5);
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world3 3,0,5,8 world2 23,6,25,14 64 everywhere",
                            "CopyBits world2 23,6,25,14 page 123,206,125,214 64 everywhere"));
    EXPECT_EQ(image->invalidTop, -1);
    EXPECT_EQ(image->invalidBottom, -1);
}

TEST_F(AnimatedImage, DrawsItsFirstFrameAlwaysInFull)
{
    DrawRows(3, 5);
    EXPECT_THAT(Copies(), ElementsAre("CopyBits world1 0,0,40,20 world2 0,0,40,20 64 everywhere",
                                      kCompositeToPage));
}

TEST_F(AnimatedImage, PaintsThePlaceWhiteBehindAFrameWithoutABackgroundColor)
{
    for (const Method method : {Method{2}, Method{-1}}) {
        AddPart(0, method);
        Draw();
        EXPECT_THAT(
            Calls({"RGBBackColor", "RGBForeColor", "EraseRect"}),
            ElementsAre("RGBBackColor world2 ffff,ffff,ffff", "EraseRect world2 20,6,30,14"));
    }
}

TEST_F(AnimatedImage, PaintsThePlaceInTheBackgroundColor)
{
    for (const Method method : {Method{2}, Method{-1}}) {
        image->SetBackgroundColor({0x11, 0x22, 0x33});
        AddPart(0, method);
        Draw();
        EXPECT_THAT(Calls({"SetGWorld", "RGBBackColor", "EraseRect"}),
                    ElementsAre("SetGWorld world2", "SetGWorld page", "SetGWorld world2",
                                "RGBBackColor world2 11,22,33", "EraseRect world2 20,6,30,14",
                                "SetGWorld page"));
    }
}

TEST_F(AnimatedImage, IgnoresABackgroundColorThatWasNotSet)
{
    image->backgroundColor = {0x11, 0x22, 0x33};
    AddPart(0, kDisposalRestoreBackground);
    Draw();
    EXPECT_THAT(Calls({"RGBBackColor"}), ElementsAre("RGBBackColor world2 ffff,ffff,ffff"));
}

TEST_F(AnimatedImage, CopiesTheMaskItselfOverThePlaceOfAFrameThatHasOne)
{
    image->SetBackgroundColor({0x11, 0x22, 0x33});
    for (const Method method : {Method{2}, Method{-1}}) {
        AddPart(1, method);
        Draw();
        const std::string mask = "world" + std::to_string(Frame(1).maskGWorld->number);
        EXPECT_THAT(Calls({"RGBForeColor", "RGBBackColor", "BackColor", "EraseRect", "CopyBits"}),
                    ElementsAre("BackColor world2 30", kCompositeToPage,
                                "RGBForeColor world2 11,22,33", "BackColor world2 30",
                                "CopyBits " + mask + " 0,0,10,8 world2 20,6,30,14 64 everywhere"));
        RemovePart();
    }
}

TEST_F(AnimatedImage, CopiesADeepMaskOverThePlaceToo)
{
    AddPart(8, kDisposalRestoreBackground);
    Draw();
    EXPECT_EQ(Copies().back(), "CopyBits world4 0,0,10,8 world2 20,6,30,14 64 everywhere");
}

TEST_F(AnimatedImage, CopiesTheMaskOverThePlaceWhateverTheFramesTransparencySays)
{
    AddPart(1, kDisposalRestoreBackground);
    image->SetFrameTransparency(1, 0, -1);
    Draw();
    EXPECT_EQ(Copies().back(), "CopyBits world4 0,0,10,8 world2 20,6,30,14 64 everywhere");
}

TEST_F(AnimatedImage, LeavesThePlaceWhenTheMaskCannotBeLockedForIt)
{
    AddPart(1, kDisposalRestoreBackground);
    probe.Fail("LockPixels", memFullErr, 4);
    Draw();
    EXPECT_THAT(Calls({"CopyBits"}), ElementsAre(kCompositeToPage));
    ExpectAllPutBack();
}

TEST_F(AnimatedImage, SavesAndPutsBackWhatWasUnderTheFrame)
{
    AddPart(0, kDisposalRestorePrevious);
    Draw();
    EXPECT_THAT(Calls({"NewGWorld", "CopyBits", "DisposeGWorld", "UnlockPixels"}),
                ElementsAre("NewGWorld 0 0,0,10,8 no-colors 4",
                            "CopyBits world2 20,6,30,14 world4 0,0,10,8 64 everywhere",
                            kFrameToComposite, kCompositeToPage,
                            "CopyBits world4 0,0,10,8 world2 20,6,30,14 64 everywhere",
                            "DisposeGWorld world4", "UnlockPixels world2"));
}

TEST_F(AnimatedImage, SavesBeforeItSetsTheColorsForTheFrame)
{
    AddPart(0, kDisposalRestorePrevious);
    Draw();
    EXPECT_THAT(
        Calls({"SetGWorld", "ForeColor", "BackColor", "CopyBits"}),
        ElementsAre("SetGWorld world2", "SetGWorld world4", "BackColor world4 30",
                    "SetGWorld world2", "CopyBits world2 20,6,30,14 world4 0,0,10,8 64 everywhere",
                    "ForeColor world2 33", "BackColor world2 30", kFrameToComposite,
                    "SetGWorld page", kCompositeToPage, "SetGWorld world2",
                    "CopyBits world4 0,0,10,8 world2 20,6,30,14 64 everywhere", "SetGWorld page"));
}

TEST_F(AnimatedImage, SavesInTheMemoryThatTheImageUses)
{
    image->usesTempMem = 0;
    AddPart(0, kDisposalRestorePrevious);
    Draw();
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 0 0,0,10,8 no-colors 0"));
}

TEST_F(AnimatedImage, SavesTheColorsThatItSavesWithTheCompositeCurrent)
{
    AddPart(0, kDisposalRestorePrevious);
    CGrafPtr current = nullptr;
    probe.onCall = [&](const std::string& call) {
        if (call.rfind("CopyBits world2 20", 0) == 0)
            current = test::Graphics().current;
    };
    Draw();
    EXPECT_EQ(current, test::Graphics().World(2));
}

TEST_F(AnimatedImage, PutsNothingBackThatCouldNotBeSaved)
{
    AddPart(0, kDisposalRestorePrevious);
    probe.Fail("NewGWorld", memFullErr);
    Draw();
    EXPECT_THAT(Copies(), ElementsAre(kFrameToComposite, kCompositeToPage));
    EXPECT_EQ(probe.Count("DisposeGWorld"), 0);
}

TEST_F(AnimatedImage, DoesNothingAfterAFrameOfAnyOtherMethod)
{
    for (const Method method :
         {Method{0}, Method{1}, Method{4}, Method{127}, Method{-2}, Method{-128}}) {
        AddPart(0, method);
        Draw();
        EXPECT_EQ(Copies().size(), 2U) << int{method};
        EXPECT_EQ(probe.Count("NewGWorld"), 0);
        RemovePart();
    }
}

TEST_F(AnimatedImage, ReleasesWhatItSavedWhenDrawingThrows)
{
    AddPart(0, kDisposalRestorePrevious);
    ThrowIn("CopyBits world3");
    EXPECT_EQ(test::ErrorOf([&] { Draw(); }), -4321);
    EXPECT_EQ(probe.Count("DisposeGWorld"), 1);
    ExpectAllPutBack();
}

TEST_F(AnimatedImage, PutsWorldAndPixelsBackWhenDrawingThrows)
{
    AddPart(1, kDisposalRestoreBackground);
    for (const std::string place : {"CopyMask", "CopyBits world2", "CopyBits world4"}) {
        ThrowIn(place);
        EXPECT_EQ(test::ErrorOf([&] { Draw(); }), -4321) << place;
        ExpectAllPutBack();
    }
}

TEST_F(AnimatedImage, IsDrawnWhileDecodingRunsToo)
{
    AddPart(0, 0);
    image->renderingFinished = false;
    image->InvalidateRow(2);
    Draw(false);
    EXPECT_THAT(Copies(), ElementsAre("CopyBits world1 0,0,40,20 world2 0,0,40,20 64 everywhere",
                                      kCompositeToPage));
}

TEST_F(AnimatedImage, CountsNothingWhenItIsOnlyDrawn)
{
    AddPart(0, 0);
    image->Display(kArea, 0);
    EXPECT_EQ(image->curFrame, 1);
    EXPECT_EQ(image->loopsDone, 0);
    EXPECT_EQ(image->nextFrameTime, 0U);
}

// SPDX-License-Identifier: MIT
//
// Drawing an image that is not animated, call by call.
#include "tests/support/ScriptedImageTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr Rect kArea = {100, 200, 140, 220};
const std::vector<std::string> kDrawing = {
    "GetPort",   "SetPort",   "GetPixelsState", "SetPixelsState", "LockPixels",  "UnlockPixels",
    "ForeColor", "BackColor", "CopyBits",       "CopyMask",       "CopyDeepMask"};

class StillImage : public test::ScriptedImageTest
{
protected:
    void Display(const Rect& area = kArea)
    {
        probe.Forget();
        image->Display(area, 0);
    }
    void DisplayNewRows(const std::vector<SInt16>& rows)
    {
        image->SetDisplayFlags(kVornDisplayPartialRedraw);
        for (const SInt16 row : rows)
            image->InvalidateRow(row);
        Display();
    }
};

} // namespace

TEST_F(StillImage, DrawsNothingWithoutFramesButHasBeenDisplayed)
{
    Display();
    EXPECT_THAT(Copies(), IsEmpty());
    EXPECT_EQ(image->hasDisplayed, 1);
}

TEST_F(StillImage, LocksSetsColorsAndCopiesInOrder)
{
    AddFrame();
    Display();
    EXPECT_THAT(Calls(kDrawing),
                ElementsAre("GetPort", "GetPort", "GetPixelsState world1", "LockPixels world1",
                            "ForeColor page 33", "BackColor page 30",
                            "CopyBits world1 0,0,40,20 page 100,200,140,220 64 everywhere",
                            "SetPixelsState world1 0", "SetPort page"));
}

TEST_F(StillImage, CopiesThroughAOneBitMask)
{
    AddFrame(1);
    Display();
    EXPECT_THAT(Calls(kDrawing),
                ElementsAre("GetPort", "GetPort", "GetPixelsState world1", "LockPixels world1",
                            "ForeColor page 33", "BackColor page 30", "GetPixelsState world2",
                            "LockPixels world2",
                            "CopyMask world1 0,0,40,20 world2 0,0,40,20 page 100,200,140,220",
                            "SetPixelsState world2 0", "SetPixelsState world1 0", "SetPort page"));
}

TEST_F(StillImage, CopiesThroughADeepMask)
{
    AddFrame(8);
    Display();
    EXPECT_THAT(Copies(), ElementsAre("CopyDeepMask world1 0,0,40,20 world2 0,0,40,20 page "
                                      "100,200,140,220 64 everywhere"));
}

TEST_F(StillImage, TakesAMaskWithoutADepthForADeepOne)
{
    AddFrame();
    image->SetFrameMaskGWorld(0, test::Graphics().NewWorld(kImageRect, 1));
    Display();
    EXPECT_THAT(Copies(), ElementsAre("CopyDeepMask world1 0,0,40,20 world2 0,0,40,20 page "
                                      "100,200,140,220 64 everywhere"));
}

TEST_F(StillImage, CopiesThroughAMaskWhateverItsTransparencySays)
{
    AddFrame(1);
    image->SetFrameTransparency(0, 0, -1);
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyMask world1 0,0,40,20 world2 0,0,40,20 page 100,200,140,220"));
    image->SetFrameMaskGWorld(0, nullptr);
    image->SetFrameTransparency(0, 1, 0);
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 0,0,40,20 page 100,200,140,220 64 everywhere"));
}

TEST_F(StillImage, LeavesPixelsLockedThatTheDecoderLocked)
{
    AddFrame(1);
    LockPixels(GetGWorldPixMap(Frame(0).gworld));
    Display();
    EXPECT_EQ(test::Graphics().World(1)->state, GWorldFlags{pixelsLocked});
    EXPECT_EQ(test::Graphics().World(2)->state, 0U);
}

TEST_F(StillImage, IsNotDrawnWhenItsPixelsCannotBeLocked)
{
    AddFrame(1);
    probe.Fail("LockPixels", memFullErr);
    Display();
    EXPECT_THAT(Copies(), IsEmpty());
    EXPECT_EQ(image->hasDisplayed, 1);
}

TEST_F(StillImage, IsNotDrawnWhenItsMaskCannotBeLocked)
{
    AddFrame(1);
    probe.Fail("LockPixels", memFullErr, 2);
    Display();
    EXPECT_THAT(Copies(), IsEmpty());
    EXPECT_FALSE(test::Graphics().AnyLocked());
}

TEST_F(StillImage, OnlyPutsBackWhatItHasChangedWhenItsPixelsCannotBeLocked)
{
    AddFrame(1);
    probe.Fail("LockPixels", memFullErr);
    Display();
    EXPECT_THAT(Calls(kDrawing),
                ElementsAre("GetPort", "GetPort", "GetPixelsState world1", "LockPixels world1",
                            "SetPixelsState world1 0", "SetPort page"));
}

TEST_F(StillImage, PutsBackBothStatesWhenItsMaskCannotBeLocked)
{
    AddFrame(1);
    probe.Fail("LockPixels", memFullErr, 2);
    Display();
    EXPECT_THAT(Calls({"LockPixels", "SetPixelsState", "SetPort"}),
                ElementsAre("LockPixels world1", "LockPixels world2", "SetPixelsState world2 0",
                            "SetPixelsState world1 0", "SetPort page"));
}

TEST_F(StillImage, ForgetsItsNewRowsAlsoWhenItsPixelsCannotBeLocked)
{
    AddFrame();
    probe.Fail("LockPixels", memFullErr);
    DisplayNewRows({10});
    EXPECT_EQ(image->invalidTop, -1);
    EXPECT_EQ(image->invalidBottom, -1);
}

TEST_F(StillImage, IsNotDrawnWithoutPixels)
{
    AddFrame();
    image->SetFrameGWorld(0, nullptr);
    Display();
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(StillImage, PutsPortAndPixelsBackWhenCopyingThrows)
{
    AddFrame(1);
    probe.onCall = [](const std::string& call) {
        if (call.rfind("CopyMask", 0) == 0)
            throw OSErr{-4321};
    };
    EXPECT_EQ(test::ErrorOf([&] { Display(); }), -4321);
    EXPECT_FALSE(test::Graphics().AnyLocked());
    EXPECT_EQ(test::Graphics().current, test::Graphics().Page());
    EXPECT_EQ(probe.Count("SetPort"), 1);
}

TEST_F(StillImage, ShiftsItsSourceAndItsTargetByTheDisplayPosition)
{
    AddFrame();
    image->SetFrameDisplayPos(0, {4, 2});
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 4,2,44,22 page 104,202,144,222 64 everywhere"));
}

TEST_F(StillImage, MapsItsOwnBoundsOntoItsPlace)
{
    AddFrame(0, {10, 10, 30, 20});
    image->SetDisplayFlags(kVornDisplayScale);
    Display({0, 0, 60, 40});
    EXPECT_THAT(Copies(), ElementsAre("CopyBits world1 10,10,30,20 page 0,0,60,40 64 everywhere"));
}

TEST_F(StillImage, ShowsItsFirstFrameWhileDecodingRuns)
{
    AddFrame();
    AddFrame();
    AddFrame();
    image->curFrame = 2;
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 0,0,40,20 page 100,200,140,220 64 everywhere"));
}

TEST_F(StillImage, ShowsItsCurrentFrameOnceDecoded)
{
    AddFrame();
    AddFrame();
    image->curFrame = 1;
    FinishDecoding();
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world2 0,0,40,20 page 100,200,140,220 64 everywhere"));
}

TEST_F(StillImage, LooksForItsFrameInTheListWhateverIsCounted)
{
    AddFrame();
    image->frameCount = 0;
    Display();
    EXPECT_EQ(Copies().size(), 1U);
}

TEST_F(StillImage, DrawsNothingForACurrentFrameOutOfRange)
{
    AddFrame();
    FinishDecoding();
    for (const SInt16 wrong : {SInt16{1}, SInt16{32767}, SInt16{-2}}) {
        image->curFrame = wrong;
        Display();
        EXPECT_THAT(Copies(), IsEmpty()) << wrong;
    }
}

TEST_F(StillImage, DrawsNothingForAnEmptySlot)
{
    image->frames.Append(nullptr);
    image->curFrame = 0;
    image->InvalidateRow(3);
    Display();
    EXPECT_THAT(Copies(), IsEmpty());
    EXPECT_EQ(image->invalidTop, 3);
}

TEST_F(StillImage, CopiesOnlyItsNewRowsWhenToldSo)
{
    AddFrame();
    DisplayNewRows({10, 11});
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 10,0,12,20 page 110,200,112,220 64 everywhere"));
}

TEST_F(StillImage, ForgetsItsNewRowsOnceDrawn)
{
    AddFrame();
    DisplayNewRows({10, 11});
    EXPECT_EQ(image->invalidTop, -1);
    EXPECT_EQ(image->invalidBottom, -1);
}

TEST_F(StillImage, CopiesEverythingUnlessToldToCopyNewRows)
{
    AddFrame();
    image->InvalidateRow(10);
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 0,0,40,20 page 100,200,140,220 64 everywhere"));
    EXPECT_EQ(image->invalidTop, -1);
    EXPECT_EQ(image->invalidBottom, -1);
}

TEST_F(StillImage, CopiesNothingWithoutNewRowsWhileDecodingRuns)
{
    AddFrame();
    DisplayNewRows({});
    EXPECT_THAT(Copies(), IsEmpty());
    EXPECT_EQ(image->hasDisplayed, 1);
}

TEST_F(StillImage, CopiesEverythingWithoutNewRowsOnceDecoded)
{
    AddFrame();
    FinishDecoding();
    DisplayNewRows({});
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 0,0,40,20 page 100,200,140,220 64 everywhere"));
}

TEST_F(StillImage, LooksAtNoFlagOfTheHosts)
{
    AddFrame();
    image->SetDisplayFlags(kVornDisplayPartialRedraw);
    image->InvalidateRow(10);
    probe.Forget();
    image->Display(kArea, 0xFF);
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 10,0,11,20 page 110,200,111,220 64 everywhere"));
}

TEST_F(StillImage, TakesEachEdgeOfTheBandForItself)
{
    AddFrame();
    image->SetDisplayFlags(kVornDisplayPartialRedraw);
    image->invalidTop = 7;
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 7,0,40,20 page 107,200,140,220 64 everywhere"));
    image->invalidBottom = 7;
    Display();
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 0,0,7,20 page 100,200,107,220 64 everywhere"));
}

TEST_F(StillImage, AddsItsDisplayPositionToItsNewRows)
{
    AddFrame();
    image->SetFrameDisplayPos(0, {4, 2});
    DisplayNewRows({10});
    EXPECT_THAT(Copies(),
                ElementsAre("CopyBits world1 14,2,15,22 page 114,202,115,222 64 everywhere"));
}

TEST_F(StillImage, IsNotDrawnAboveOrBelowThePort)
{
    AddFrame();
    Display({401, 0, 441, 20});
    EXPECT_THAT(Copies(), IsEmpty());
    Display({-41, 0, -1, 20});
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(StillImage, IsDrawnWhenItTouchesThePort)
{
    AddFrame();
    Display({400, 0, 440, 20});
    EXPECT_EQ(Copies().size(), 1U);
    Display({-40, 0, 0, 20});
    EXPECT_EQ(Copies().size(), 1U);
}

TEST_F(StillImage, IsDrawnBesideThePortToo)
{
    AddFrame();
    Display({0, 700, 40, 720});
    EXPECT_EQ(Copies().size(), 1U);
}

TEST_F(StillImage, KeepsItsNewRowsWhenItIsOutOfView)
{
    AddFrame();
    image->SetDisplayFlags(kVornDisplayPartialRedraw);
    image->InvalidateRow(5);
    Display({401, 0, 441, 20});
    EXPECT_EQ(image->invalidTop, 5);
    EXPECT_EQ(image->invalidBottom, 6);
}

TEST_F(StillImage, DrawsNothingWithoutAPort)
{
    AddFrame();
    test::Graphics().current = nullptr;
    Display();
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(StillImage, AsksADerivedClassForItsPlace)
{
    class Elsewhere : public test::TestImage
    {
    public:
        using TestImage::TestImage;
        void GetDisplayRect(const Rect&, Rect& outRect) override { outRect = {1, 2, 41, 22}; }
    };
    image = std::make_unique<Elsewhere>(bundle.Get());
    AddFrame();
    Display();
    EXPECT_THAT(Copies(), ElementsAre("CopyBits world1 0,0,40,20 page 1,2,41,22 64 everywhere"));
}

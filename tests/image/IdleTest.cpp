// SPDX-License-Identifier: MIT
//
// An animation's way through its frames by the clock.
#include "tests/support/ScriptedImageTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr Rect kArea = {100, 200, 140, 220};

class IdleImage : public test::ScriptedImageTest
{
protected:
    void SetUp() override { image->compositeGWorld = test::Graphics().NewWorld(kImageRect, 16); }
    // Frame n has world n + 2, as the composite has the first one.
    void AddFrames(int count, UInt16 delayHundredths)
    {
        for (int number = 0; number < count; ++number)
            image->SetFrameDelay(AddFrame(), delayHundredths);
    }
    void Start(SInt16 loops = 0)
    {
        StartAnimation(loops);
        image->hasDisplayed = 1;
    }
    // The frames that Idle draws, by their index.
    std::vector<int> FramesDrawn(int idles)
    {
        probe.Forget();
        for (int number = 0; number < idles; ++number)
            image->Idle(kArea, 0);
        std::vector<int> frames;
        for (const std::string& call : Calls({"CopyBits"}))
            if (call.find("world1 0,0,40,20 64") != std::string::npos)
                frames.push_back(std::stoi(call.substr(std::string("CopyBits world").size())) - 2);
        return frames;
    }
};

} // namespace

TEST_F(IdleImage, DoesNothingBeforeItHasBeenDisplayed)
{
    AddFrames(2, 0);
    Start();
    image->hasDisplayed = 0;
    EXPECT_THAT(FramesDrawn(3), IsEmpty());
    EXPECT_EQ(image->curFrame, 0);
    EXPECT_EQ(image->nextFrameTime, 0U);
}

TEST_F(IdleImage, DoesNothingBeforeItIsDecoded)
{
    AddFrames(2, 0);
    Start();
    image->renderingFinished = false;
    EXPECT_THAT(FramesDrawn(3), IsEmpty());
    EXPECT_EQ(image->curFrame, 0);
}

TEST_F(IdleImage, DoesNothingWhenItIsNotAnimated)
{
    AddFrames(2, 0);
    Start();
    image->looping = 0;
    EXPECT_THAT(FramesDrawn(3), IsEmpty());
    EXPECT_EQ(image->curFrame, 0);
}

TEST_F(IdleImage, DoesNothingOnceItIsDone)
{
    AddFrames(2, 0);
    Start();
    image->animationDone = 1;
    EXPECT_THAT(FramesDrawn(3), IsEmpty());
    EXPECT_EQ(image->curFrame, 0);
}

TEST_F(IdleImage, StartsOnceDisplayedAndDecoded)
{
    AddFrames(2, 0);
    image->SetLooping(1, 0);
    image->Display(kArea, 0);
    image->FinishRendering();
    EXPECT_THAT(FramesDrawn(1), ElementsAre(0));
}

TEST_F(IdleImage, PlaysEveryLoopAndThenStopsOnItsFirstFrame)
{
    AddFrames(3, 0);
    Start(2);
    EXPECT_THAT(FramesDrawn(9), ElementsAre(0, 1, 2, 0, 1, 2));
    EXPECT_EQ(image->curFrame, 0);
    EXPECT_EQ(image->animationDone, 1);
    EXPECT_EQ(image->loopsDone, 2);
}

TEST_F(IdleImage, ShowsAFrameWithoutDelayForOneIdleOnly)
{
    AddFrames(2, 0);
    Start();
    EXPECT_THAT(FramesDrawn(3), ElementsAre(0, 1, 0));
}

TEST_F(IdleImage, WaitsForTheFramesDelay)
{
    AddFrames(2, 10);
    Start();
    clock.GoToTick(100);
    EXPECT_THAT(FramesDrawn(2), ElementsAre(0));
    EXPECT_EQ(image->nextFrameTime, 106U);
    clock.GoToTick(105);
    EXPECT_THAT(FramesDrawn(2), IsEmpty());
    clock.GoToTick(106);
    EXPECT_THAT(FramesDrawn(2), ElementsAre(1));
}

TEST_F(IdleImage, WaitsByTheDelayOfTheFrameThatItHasDrawn)
{
    AddFrames(2, 0);
    image->SetFrameDelay(1, 50);
    Start();
    clock.GoToTick(100);
    EXPECT_THAT(FramesDrawn(1), ElementsAre(0));
    EXPECT_EQ(image->nextFrameTime, 100U);
    EXPECT_THAT(FramesDrawn(1), ElementsAre(1));
    EXPECT_EQ(image->nextFrameTime, 130U);
}

TEST_F(IdleImage, CountsTheDelayFromTheEndOfDrawing)
{
    AddFrames(2, 10);
    Start();
    clock.GoToTick(100);
    probe.onCall = [&](const std::string& call) {
        if (call.find(" page ") != std::string::npos)
            clock.GoToTick(120);
    };
    FramesDrawn(1);
    EXPECT_EQ(image->nextFrameTime, 126U);
}

TEST_F(IdleImage, ReadsTheClockBeforeAndAfterDrawing)
{
    AddFrames(2, 0);
    Start();
    FramesDrawn(1);
    EXPECT_THAT(Calls({"TickCount", "CopyBits"}),
                ElementsAre("TickCount", "CopyBits world2 0,0,40,20 world1 0,0,40,20 64 everywhere",
                            "CopyBits world1 0,0,40,20 page 100,200,140,220 64 everywhere",
                            "TickCount"));
}

TEST_F(IdleImage, ReadsTheClockOnceWhenThereIsNothingToDo)
{
    FramesDrawn(1);
    EXPECT_EQ(probe.Count("TickCount"), 1);
}

TEST_F(IdleImage, ComparesTicksAsUnsigned)
{
    AddFrames(2, 0);
    Start();
    image->nextFrameTime = 0xFFFFFFFFU;
    EXPECT_THAT(FramesDrawn(2), IsEmpty());
    EXPECT_EQ(image->curFrame, 0);
}

TEST_F(IdleImage, DrawsInFullWhateverTheFlagsSay)
{
    AddFrames(2, 0);
    Start();
    image->SetDisplayFlags(kVornDisplayPartialRedraw);
    image->InvalidateRow(3);
    image->curFrame = 1;
    FramesDrawn(1);
    EXPECT_EQ(Copies().back(), "CopyBits world1 0,0,40,20 page 100,200,140,220 64 everywhere");
}

TEST_F(IdleImage, LooksAtNoFlagOfTheHosts)
{
    AddFrames(2, 0);
    Start();
    probe.Forget();
    image->Idle(kArea, 0xFF);
    EXPECT_EQ(Copies().size(), 2U);
    EXPECT_EQ(image->curFrame, 1);
}

TEST_F(IdleImage, DoesNotWaitForTheUser)
{
    AddFrames(3, 0);
    image->SetFrameUserInput(1, 1);
    Start();
    EXPECT_THAT(FramesDrawn(3), ElementsAre(0, 1, 2));
}

TEST_F(IdleImage, GoesOnForEverWithALoopCountOfZero)
{
    AddFrames(1, 0);
    Start(0);
    EXPECT_EQ(FramesDrawn(100).size(), 100U);
    EXPECT_EQ(image->animationDone, 0);
    EXPECT_EQ(image->loopsDone, 100);
}

TEST_F(IdleImage, IsDoneWhenSixteenBitsOfLoopsAreCounted)
{
    AddFrames(1, 0);
    Start(0);
    image->loopsDone = 32767;
    EXPECT_EQ(FramesDrawn(1).size(), 1U);
    EXPECT_EQ(image->loopsDone, -32768);
    image->loopsDone = -1;
    EXPECT_EQ(FramesDrawn(3).size(), 1U);
    EXPECT_EQ(image->loopsDone, 0);
    EXPECT_EQ(image->animationDone, 1);
}

TEST_F(IdleImage, IsDoneAtANegativeLoopCountToo)
{
    AddFrames(1, 0);
    Start(-3);
    image->loopsDone = -5;
    EXPECT_EQ(FramesDrawn(4).size(), 2U);
    EXPECT_EQ(image->animationDone, 1);
}

TEST_F(IdleImage, IsDueAtOnceAfterAFrameThatItDoesNotCount)
{
    AddFrames(2, 50);
    Start();
    image->frameCount = 1;
    image->curFrame = 1;
    clock.GoToTick(100);
    FramesDrawn(1);
    EXPECT_EQ(image->nextFrameTime, 100U);
    EXPECT_EQ(image->curFrame, 2);
}

TEST_F(IdleImage, ThrowsForAFrameThatIsCountedButNotInTheList)
{
    AddFrames(1, 0);
    Start();
    image->frameCount = 3;
    image->curFrame = 2;
    EXPECT_EQ(test::ErrorOf([&] { image->Idle(kArea, 0); }), paramErr);
    EXPECT_EQ(image->curFrame, 2);
}

TEST_F(IdleImage, KeepsItsTimeWhenAFrameIsCountedButNotInTheList)
{
    AddFrames(1, 0);
    Start();
    image->frameCount = 3;
    image->curFrame = 2;
    image->nextFrameTime = 77;
    clock.GoToTick(100);
    EXPECT_EQ(test::ErrorOf([&] { image->Idle(kArea, 0); }), paramErr);
    EXPECT_EQ(image->nextFrameTime, 77U);
}

TEST_F(IdleImage, CountsItsCurrentFrameInSixteenBits)
{
    AddFrames(1, 0);
    Start();
    image->curFrame = 32767;
    EXPECT_THAT(FramesDrawn(1), IsEmpty());
    EXPECT_EQ(image->curFrame, -32768);
}

TEST_F(IdleImage, HasPlayedALoopOfNoFramesAtOnce)
{
    Start(1);
    FramesDrawn(1);
    EXPECT_EQ(image->curFrame, 0);
    EXPECT_EQ(image->loopsDone, 1);
    EXPECT_EQ(image->animationDone, 1);
}

TEST_F(IdleImage, StaysWhereItIsWhenItsCompositeCannotBeMade)
{
    AddFrames(2, 50);
    Start();
    image->compositeGWorld = nullptr;
    probe.Fail("NewGWorld", -4321);
    EXPECT_EQ(test::ErrorOf([&] { image->Idle(kArea, 0); }), -4321);
    EXPECT_EQ(image->curFrame, 0);
    EXPECT_EQ(image->nextFrameTime, 0U);
}

TEST_F(IdleImage, NeverClearsItsCompositeBetweenLoops)
{
    AddFrames(2, 0);
    Start(3);
    FramesDrawn(6);
    EXPECT_THAT(Calls({"NewGWorld", "EraseRect"}), IsEmpty());
}

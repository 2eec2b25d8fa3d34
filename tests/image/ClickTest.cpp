// SPDX-License-Identifier: MIT
//
// Clicks into an image.
#include "tests/support/ScriptedImageTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr Rect kArea = {100, 200, 140, 220};

class ClickedImage : public test::ScriptedImageTest
{
protected:
    // The frames' worlds are world1, world2 and world3, the composite is world4.
    void SetUp() override
    {
        for (int number = 0; number < 3; ++number)
            image->SetFrameDelay(AddFrame(), static_cast<UInt16>(100 * (number + 1)));
        image->SetFrameUserInput(0, 1);
        image->SetFrameUserInput(2, 1);
        image->compositeGWorld = test::Graphics().NewWorld(kImageRect, 16);
        StartAnimation();
        clock.GoToTick(1000);
    }
    Boolean Click() { return image->HandleClick(kArea, EventRecord{}); }
};

} // namespace

TEST_F(ClickedImage, GoesOnFromAFrameThatWaitsForTheUser)
{
    EXPECT_TRUE(Click());
    EXPECT_EQ(image->curFrame, 1);
}

TEST_F(ClickedImage, DrawsTheFrameThatItGoesOnToInFull)
{
    image->SetDisplayFlags(kVornDisplayPartialRedraw);
    image->InvalidateRow(3);
    Click();
    EXPECT_THAT(Copies(), ElementsAre("CopyBits world2 0,0,40,20 world4 0,0,40,20 64 everywhere",
                                      "CopyBits world4 0,0,40,20 page 100,200,140,220 64 "
                                      "everywhere"));
}

TEST_F(ClickedImage, ShowsThatFrameForItsDelay)
{
    Click();
    EXPECT_EQ(image->nextFrameTime, 1120U);
}

TEST_F(ClickedImage, CountsTheDelayFromTheEndOfDrawing)
{
    probe.onCall = [&](const std::string& call) {
        if (call.find(" page ") != std::string::npos)
            clock.GoToTick(1050);
    };
    Click();
    EXPECT_EQ(image->nextFrameTime, 1170U);
}

TEST_F(ClickedImage, DrawsThatFrameAgainWhenItsDelayIsOver)
{
    Click();
    image->hasDisplayed = 1;
    clock.GoToTick(1120);
    probe.Forget();
    image->Idle(kArea, 0);
    EXPECT_EQ(Copies().front(), "CopyBits world2 0,0,40,20 world4 0,0,40,20 64 everywhere");
    EXPECT_EQ(image->curFrame, 2);
}

TEST_F(ClickedImage, DoesNotMoveWhereItDoesNotWaitForTheUser)
{
    image->curFrame = 1;
    image->nextFrameTime = 77;
    EXPECT_FALSE(Click());
    EXPECT_EQ(image->curFrame, 1);
    EXPECT_EQ(image->nextFrameTime, 77U);
    EXPECT_EQ(image->loopsDone, 0);
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(ClickedImage, GoesFromItsLastFrameToItsFirstWithoutCountingALoop)
{
    image->curFrame = 2;
    image->SetLooping(1, 1);
    EXPECT_TRUE(Click());
    EXPECT_EQ(image->curFrame, 0);
    EXPECT_EQ(image->loopsDone, 0);
    EXPECT_EQ(image->animationDone, 0);
    EXPECT_EQ(image->nextFrameTime, 1060U);
}

TEST_F(ClickedImage, DoesNotNeedToBeAnimatedDisplayedOrDecoded)
{
    image->looping = 0;
    image->hasDisplayed = 0;
    image->renderingFinished = false;
    EXPECT_TRUE(Click());
    EXPECT_EQ(image->curFrame, 1);
}

TEST_F(ClickedImage, IgnoresClicksWithoutFrames)
{
    image->curFrame = -1;
    EXPECT_FALSE(Click());
    EXPECT_EQ(image->curFrame, -1);
}

TEST_F(ClickedImage, IgnoresClicksOnAFrameThatItDoesNotCount)
{
    image->curFrame = 2;
    image->frameCount = 2;
    EXPECT_FALSE(Click());
    EXPECT_EQ(image->curFrame, 2);
}

TEST_F(ClickedImage, ThrowsForAFrameThatIsCountedButNotInTheList)
{
    image->frameCount = 9;
    image->curFrame = 5;
    EXPECT_EQ(test::ErrorOf([&] { Click(); }), paramErr);
    EXPECT_EQ(image->curFrame, 5);
}

TEST_F(ClickedImage, ThrowsForANextFrameThatIsCountedButNotInTheList)
{
    image->frameCount = 9;
    image->curFrame = 2;
    image->nextFrameTime = 77;
    EXPECT_EQ(test::ErrorOf([&] { Click(); }), paramErr);
    EXPECT_EQ(image->curFrame, 3);
    EXPECT_EQ(image->nextFrameTime, 77U);
}

TEST_F(ClickedImage, HasGoneOnWhenTheNextFrameCannotBeDrawn)
{
    image->compositeGWorld = nullptr;
    image->nextFrameTime = 77;
    probe.Fail("NewGWorld", -4321);
    EXPECT_EQ(test::ErrorOf([&] { Click(); }), -4321);
    EXPECT_EQ(image->curFrame, 1);
    EXPECT_EQ(image->nextFrameTime, 77U);
}

TEST_F(ClickedImage, IgnoresClicksOnAnEmptySlot)
{
    image->frames.Append(nullptr);
    image->frameCount = 4;
    image->curFrame = 3;
    EXPECT_FALSE(Click());
    EXPECT_EQ(image->curFrame, 3);
}

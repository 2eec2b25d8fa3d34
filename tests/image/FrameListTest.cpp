// SPDX-License-Identifier: MIT
//
// The frames of an image: adding them and reaching them by index.
#include "tests/support/ScriptedImageTest.h"

#include <functional>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr Rect kBounds = {0, 0, 10, 20};

class FrameList : public test::ScriptedImageTest
{
protected:
    OSErr Add(UInt16 maskDepth, CTabHandle colors = nullptr)
    {
        return image->AddNewFrame(kBounds, 8, colors, maskDepth, index);
    }
    // A slot that holds no frame.
    void AddEmptySlot() { image->frames.Append(nullptr); }

    SInt16 index = -7;
};

} // namespace

TEST_F(FrameList, GivesTheFirstFrameIndexZeroAndMakesItCurrent)
{
    EXPECT_EQ(Add(0), 0);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(image->curFrame, 0);
}

TEST_F(FrameList, GivesTheSecondFrameIndexOneAndLeavesTheCurrentOne)
{
    Add(0);
    image->curFrame = 5;
    Add(0);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(image->curFrame, 5);
}

TEST_F(FrameList, MakesTheFirstOfTheFramesThatFollowCurrentAgainAfterNone)
{
    Add(0);
    image->curFrame = -1;
    Add(0);
    EXPECT_EQ(image->curFrame, 0);
}

TEST_F(FrameList, LeavesACurrentFrameThatCannotBeOne)
{
    image->curFrame = -2;
    Add(0);
    EXPECT_EQ(image->curFrame, -2);
}

TEST_F(FrameList, CountsTheFramesBesideTheList)
{
    Add(0);
    Add(0);
    EXPECT_EQ(image->frameCount, 2);
    EXPECT_EQ(image->frames.count, 2);
    EXPECT_EQ(image->frames.capacity, 4);
}

TEST_F(FrameList, NumbersAFrameByTheCountAndNotByTheList)
{
    AddEmptySlot();
    Add(0);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(image->frameCount, 1);
    EXPECT_NE(image->frames[1], nullptr);
}

TEST_F(FrameList, CountsInSixteenBits)
{
    image->frameCount = 32767;
    Add(0);
    EXPECT_EQ(index, 32767);
    EXPECT_EQ(image->frameCount, -32768);
}

TEST_F(FrameList, HasCountedAFrameThatItFindsNoSlotFor)
{
    image->frames.count = INT32_MAX - 1; // a list can have no more slots
    EXPECT_EQ(test::ErrorOf([&] { Add(0); }), memFullErr);
    EXPECT_EQ(image->frameCount, 1);
    EXPECT_EQ(image->curFrame, -1);
    EXPECT_EQ(index, -7);
}

TEST_F(FrameList, GrowsByFourSlots)
{
    for (int count = 0; count < 5; ++count)
        Add(0);
    EXPECT_EQ(image->frames.count, 5);
    EXPECT_EQ(image->frames.capacity, 8);
}

TEST_F(FrameList, MakesAnOpaqueFrameWithoutAMask)
{
    Add(0);
    EXPECT_EQ(Frame(0).gworld, test::Graphics().World(1));
    EXPECT_EQ(Frame(0).depth, 8);
    EXPECT_EQ(Frame(0).maskGWorld, nullptr);
    EXPECT_EQ(Frame(0).transparent, 0);
    EXPECT_EQ(Frame(0).maskDepth, 0);
}

TEST_F(FrameList, MakesATransparentFrameWithAMask)
{
    for (const UInt16 maskDepth : {UInt16{1}, UInt16{8}}) {
        Add(maskDepth);
        EXPECT_NE(Frame(index).maskGWorld, nullptr);
        EXPECT_EQ(Frame(index).maskDepth, maskDepth);
        EXPECT_EQ(Frame(index).transparent, 1);
        EXPECT_EQ(Frame(index).transparentIndex, -1);
    }
}

TEST_F(FrameList, GivesTheColorTableToTheFrameButNotToItsMask)
{
    ColorTable table{};
    CTabPtr master = &table;
    Add(8, &master);
    EXPECT_THAT(Calls({"NewGWorld"}),
                ElementsAre("NewGWorld 8 0,0,10,20 colors 4", "NewGWorld 8 0,0,10,20 no-colors 4"));
}

TEST_F(FrameList, MakesWorldsInTemporaryMemoryOnlyWhenTheImageUsesIt)
{
    image->usesTempMem = 0;
    Add(1);
    EXPECT_THAT(Calls({"NewGWorld"}), ElementsAre("NewGWorld 8 0,0,10,20 no-colors 0",
                                                  "NewGWorld 1 0,0,10,20 no-colors 0"));
}

TEST_F(FrameList, AddsNothingWhenTheFramesWorldCannotBeMade)
{
    probe.Fail("NewGWorld", -4321);
    EXPECT_EQ(Add(1), -4321);
    EXPECT_EQ(image->frameCount, 0);
    EXPECT_EQ(image->frames.count, 0);
    EXPECT_EQ(image->curFrame, -1);
    EXPECT_EQ(index, -7);
    EXPECT_EQ(probe.Count("NewGWorld"), 1);
}

TEST_F(FrameList, AddsNothingWhenTheMaskCannotBeMade)
{
    probe.Fail("NewGWorld", -4321, 2);
    EXPECT_EQ(Add(1), -4321);
    EXPECT_EQ(image->frameCount, 0);
    EXPECT_EQ(image->frames.count, 0);
    EXPECT_EQ(image->curFrame, -1);
    EXPECT_EQ(index, -7);
}

TEST_F(FrameList, LosesTheFramesWorldWhenTheMaskCannotBeMade)
{
    probe.Fail("NewGWorld", -4321, 2);
    Add(1);
    EXPECT_EQ(test::Graphics().WorldsAlive(), 1);
}

TEST_F(FrameList, PassesOnThatAWorldCannotBeMadeWhite)
{
    probe.Fail("LockPixels", memFullErr);
    EXPECT_EQ(Add(0), -1);
    EXPECT_EQ(image->frameCount, 0);
}

TEST_F(FrameList, ThrowsParamErrForEveryFrameThatThereIsNot)
{
    Add(1);
    const Point place{};
    Rect bounds{};
    const std::vector<std::function<void(SInt16)>> operations = {
        [&](SInt16 i) { image->GetFrameGWorld(i); },
        [&](SInt16 i) { image->GetFrameMaskGWorld(i); },
        [&](SInt16 i) { image->GetFrameBounds(i, bounds); },
        [&](SInt16 i) { image->SetFrameGWorld(i, nullptr); },
        [&](SInt16 i) { image->SetFrameMaskGWorld(i, nullptr); },
        [&](SInt16 i) { image->SetFrameDisplayPos(i, place); },
        [&](SInt16 i) { image->SetFrameTransparency(i, 1, 2); },
        [&](SInt16 i) { image->SetFrameDelay(i, 7); },
        [&](SInt16 i) { image->SetFrameUserInput(i, 1); },
        [&](SInt16 i) { image->SetFrameDisposalMethod(i, 2); },
    };
    for (std::size_t number = 0; number < operations.size(); ++number)
        for (const SInt16 wrong : {SInt16{-1}, SInt16{1}, SInt16{32767}, SInt16{-32768}})
            EXPECT_EQ(test::ErrorOf([&] { operations[number](wrong); }), paramErr)
                << "operation " << number << ", index " << wrong;
}

TEST_F(FrameList, ChecksIndicesAgainstTheListAndNotAgainstTheCount)
{
    Add(0);
    image->frameCount = 9;
    EXPECT_EQ(test::ErrorOf([&] { image->GetFrameGWorld(1); }), paramErr);
    image->frameCount = 0;
    EXPECT_EQ(image->GetFrameGWorld(0), Frame(0).gworld);
}

TEST_F(FrameList, AnswersWithAFramesWorlds)
{
    Add(1);
    EXPECT_EQ(image->GetFrameGWorld(0), test::Graphics().World(1));
    EXPECT_EQ(image->GetFrameMaskGWorld(0), test::Graphics().World(2));
}

TEST_F(FrameList, AnswersWithAFramesBounds)
{
    Add(0);
    Rect bounds{};
    image->GetFrameBounds(0, bounds);
    EXPECT_EQ(test::Text(bounds), "0,0,10,20");
}

TEST_F(FrameList, LeavesTheRectangleAloneForAFrameWithoutPixels)
{
    Add(0);
    image->SetFrameGWorld(0, nullptr);
    Rect bounds = {1, 2, 3, 4};
    image->GetFrameBounds(0, bounds);
    EXPECT_EQ(test::Text(bounds), "1,2,3,4");
}

TEST_F(FrameList, HasNoWorldsInAnEmptySlot)
{
    AddEmptySlot();
    EXPECT_EQ(image->GetFrameGWorld(0), nullptr);
    EXPECT_EQ(image->GetFrameMaskGWorld(0), nullptr);
}

TEST_F(FrameList, HasEmptyBoundsInAnEmptySlot)
{
    AddEmptySlot();
    Rect bounds = {1, 2, 3, 4};
    image->GetFrameBounds(0, bounds);
    EXPECT_EQ(test::Text(bounds), "0,0,0,0");
}

TEST_F(FrameList, IgnoresWhatIsSetInAnEmptySlot)
{
    AddEmptySlot();
    EXPECT_NO_THROW({
        image->SetFrameGWorld(0, nullptr);
        image->SetFrameMaskGWorld(0, nullptr);
        image->SetFrameDisplayPos(0, {1, 2});
        image->SetFrameTransparency(0, 1, 2);
        image->SetFrameDelay(0, 7);
        image->SetFrameUserInput(0, 1);
        image->SetFrameDisposalMethod(0, 2);
    });
    EXPECT_EQ(image->frames[0], nullptr);
}

TEST_F(FrameList, DisposesOfNothingWhenAFrameGetsTheWorldItHas)
{
    Add(0);
    GWorldPtr world = Frame(0).gworld;
    image->SetFrameGWorld(0, world);
    image->SetFrameGWorld(0, world);
    EXPECT_THAT(Calls({"DisposeGWorld"}), IsEmpty());
}

TEST_F(FrameList, DisposesOfTheWorldThatAFrameHadBefore)
{
    Add(1);
    image->SetFrameGWorld(0, test::Graphics().NewWorld(kBounds, 8));
    EXPECT_THAT(Calls({"DisposeGWorld"}), ElementsAre("DisposeGWorld world1"));
    image->SetFrameMaskGWorld(0, nullptr);
    EXPECT_THAT(Calls({"DisposeGWorld"}),
                ElementsAre("DisposeGWorld world1", "DisposeGWorld world2"));
}

TEST_F(FrameList, SetsWhatBelongsToOneFrame)
{
    Add(0);
    Add(0);
    image->SetFrameDisplayPos(1, {3, 4});
    image->SetFrameTransparency(1, 1, 17);
    image->SetFrameDelay(1, 7);
    image->SetFrameUserInput(1, 1);
    image->SetFrameDisposalMethod(1, kDisposalRestorePrevious);
    EXPECT_EQ(Frame(1).displayPosition.v, 3);
    EXPECT_EQ(Frame(1).displayPosition.h, 4);
    EXPECT_EQ(Frame(1).transparent, 1);
    EXPECT_EQ(Frame(1).transparentIndex, 17);
    EXPECT_EQ(Frame(1).delayTicks, 4);
    EXPECT_EQ(Frame(1).userInput, 1);
    EXPECT_EQ(Frame(1).disposalMethod, kDisposalRestorePrevious);
    EXPECT_EQ(Frame(0).delayTicks, 0);
}

TEST_F(FrameList, StoresNoDelayForNone)
{
    Add(0);
    image->SetFrameDelay(0, 7);
    image->SetFrameDelay(0, 0);
    EXPECT_EQ(Frame(0).delayTicks, 0);
}

// SPDX-License-Identifier: MIT
//
// What a decoder calls that holds only the object.
#include "src/image/ImageFunctions.h"

#include "tests/support/ScriptedImageTest.h"
#include "toolbox/memory/Memory.h"

#include <functional>

using testing::ElementsAre;

namespace
{

class ImageFunctions : public test::ScriptedImageTest
{
protected:
    VornPlugin* Object() { return image.get(); }
};

} // namespace

TEST_F(ImageFunctions, AddFrames)
{
    SInt16 index = -7;
    const Rect bounds = {0, 0, 10, 20};
    ColorTable table{};
    CTabPtr master = &table;
    EXPECT_EQ(AddNewFrame(Object(), &bounds, 8, &master, 1, &index), 0);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(image->frameCount, 1);
    EXPECT_THAT(Calls({"NewGWorld"}),
                ElementsAre("NewGWorld 8 0,0,10,20 colors 4", "NewGWorld 1 0,0,10,20 no-colors 4"));
}

TEST_F(ImageFunctions, ReturnWhyAFrameCouldNotBeAdded)
{
    SInt16 index = -7;
    probe.Fail("NewGWorld", -4321);
    EXPECT_EQ(AddNewFrame(Object(), &kImageRect, 8, nullptr, 0, &index), -4321);
}

TEST_F(ImageFunctions, GiveAFramesWorlds)
{
    AddFrame(1);
    EXPECT_EQ(GetFrameGWorld(Object(), 0), Frame(0).gworld);
    EXPECT_EQ(GetFrameMaskGWorld(Object(), 0), Frame(0).maskGWorld);
}

TEST_F(ImageFunctions, SetAFramesWorlds)
{
    AddFrame(1);
    GWorldPtr world = test::Graphics().NewWorld(kImageRect, 8);
    GWorldPtr mask = test::Graphics().NewWorld(kImageRect, 1);
    SetFrameGWorld(Object(), 0, world);
    SetFrameMaskGWorld(Object(), 0, mask);
    EXPECT_EQ(Frame(0).gworld, world);
    EXPECT_EQ(Frame(0).maskGWorld, mask);
}

TEST_F(ImageFunctions, SetWhatBelongsToAFrame)
{
    AddFrame();
    SetFrameDisplayPos(Object(), 0, {3, 4});
    SetFrameTransparency(Object(), 0, 1, 17);
    SetFrameDelay(Object(), 0, 7);
    SetFrameUserInput(Object(), 0, 1);
    SetFrameDisposalMethod(Object(), 0, kDisposalRestoreBackground);
    EXPECT_EQ(Frame(0).displayPosition.v, 3);
    EXPECT_EQ(Frame(0).displayPosition.h, 4);
    EXPECT_EQ(Frame(0).transparent, 1);
    EXPECT_EQ(Frame(0).transparentIndex, 17);
    EXPECT_EQ(Frame(0).delayTicks, 4);
    EXPECT_EQ(Frame(0).userInput, 1);
    EXPECT_EQ(Frame(0).disposalMethod, kDisposalRestoreBackground);
}

TEST_F(ImageFunctions, SetTheColorTable)
{
    const auto table = reinterpret_cast<CTabHandle>(NewHandleClear(16));
    SetImageColorTable(Object(), table);
    EXPECT_EQ(image->colorTable, table);
}

TEST_F(ImageFunctions, SetTheBackgroundColor)
{
    const RGBColor color = {1, 2, 3};
    SetImageBackgroundColor(Object(), &color);
    EXPECT_EQ(image->backgroundColor.red, 1);
    EXPECT_EQ(image->backgroundColor.green, 2);
    EXPECT_EQ(image->backgroundColor.blue, 3);
    EXPECT_EQ(image->hasBackgroundColor, 1);
}

TEST_F(ImageFunctions, SetLooping)
{
    SetImageLooping(Object(), 1, 9);
    EXPECT_EQ(image->looping, 1);
    EXPECT_EQ(image->loopCount, 9);
}

TEST_F(ImageFunctions, KeepTheDecodersBuffer)
{
    EXPECT_EQ(GetImageTempBuffer(Object()), nullptr);
    Ptr buffer = NewPtr(16);
    SetImageTempBuffer(Object(), buffer);
    EXPECT_EQ(GetImageTempBuffer(Object()), buffer);
}

TEST_F(ImageFunctions, InvalidateRows)
{
    InvalImageRow(Object(), 10);
    EXPECT_EQ(image->invalidTop, 10);
    EXPECT_EQ(image->invalidBottom, 11);
}

TEST_F(ImageFunctions, TellAndSetTheCurrentFrame)
{
    EXPECT_EQ(GetImageCurFrame(Object()), -1);
    AddFrame();
    EXPECT_EQ(GetImageCurFrame(Object()), 0);
}

TEST_F(ImageFunctions, SetAnyCurrentFrameEvenOneThatThereIsNot)
{
    for (const SInt16 index : {SInt16{7}, SInt16{-32768}, SInt16{32767}}) {
        SetImageCurFrame(Object(), index);
        EXPECT_EQ(GetImageCurFrame(Object()), index);
    }
}

TEST_F(ImageFunctions, TellWhetherTheImageUsesTemporaryMemory)
{
    EXPECT_EQ(GetImageUsesTempMem(Object()), 1);
    image->usesTempMem = 0;
    EXPECT_EQ(GetImageUsesTempMem(Object()), 0);
}

TEST_F(ImageFunctions, PassOnTheErrorForAFrameThatThereIsNot)
{
    const std::vector<std::function<void()>> calls = {
        [&] { GetFrameGWorld(Object(), 0); },
        [&] { GetFrameMaskGWorld(Object(), 0); },
        [&] { SetFrameGWorld(Object(), 0, nullptr); },
        [&] { SetFrameMaskGWorld(Object(), 0, nullptr); },
        [&] { SetFrameDisplayPos(Object(), 0, {}); },
        [&] { SetFrameTransparency(Object(), 0, 1, 2); },
        [&] { SetFrameDelay(Object(), 0, 7); },
        [&] { SetFrameUserInput(Object(), 0, 1); },
        [&] { SetFrameDisposalMethod(Object(), 0, 2); },
    };
    for (std::size_t number = 0; number < calls.size(); ++number)
        EXPECT_EQ(test::ErrorOf(calls[number]), paramErr) << "call " << number;
}

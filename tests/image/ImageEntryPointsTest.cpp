// SPDX-License-Identifier: MIT
//
// What a host is told when an image throws.
#include "src/plugin/VornPluginABI.h"

#include "tests/support/ScriptedImageTest.h"

namespace
{

constexpr OSErr kFailure = -4321;
constexpr Rect kArea = {100, 200, 140, 220};

// An animation that is due, without a composite yet.
class HostOfAnImage : public test::ScriptedImageTest
{
protected:
    void SetUp() override
    {
        AddFrame();
        StartAnimation();
        image->hasDisplayed = 1;
    }
};

} // namespace

TEST_F(HostOfAnImage, IsToldByDisplayWhyThereIsNoComposite)
{
    probe.Fail("NewGWorld", kFailure);
    EXPECT_EQ(VornPluginDisplayObject(image.get(), &kArea, 0), kFailure);
}

TEST_F(HostOfAnImage, IsToldByIdleWhyThereIsNoComposite)
{
    probe.Fail("NewGWorld", kFailure);
    EXPECT_EQ(VornPluginIdleObject(image.get(), &kArea, 0), kFailure);
}

TEST_F(HostOfAnImage, IsToldByIdleThatAFrameIsMissing)
{
    image->frameCount = 3;
    image->curFrame = 2;
    EXPECT_EQ(VornPluginIdleObject(image.get(), &kArea, 0), paramErr);
}

TEST_F(HostOfAnImage, HearsThatAClickWasNotTakenWhenItFails)
{
    const EventRecord event{};
    image->SetFrameUserInput(0, 1);
    probe.Fail("NewGWorld", kFailure);
    EXPECT_FALSE(VornPluginHandleObjectClick(image.get(), &kArea, &event));
}

TEST_F(HostOfAnImage, IsToldWhyADragCannotBePrepared)
{
    unsigned char flag = 9;
    probe.Fail("AddDragItemFlavor", kFailure);
    EXPECT_EQ(VornPluginPrepareDrag(image.get(), nullptr, 7, &kArea, &flag), kFailure);
    EXPECT_EQ(flag, 9); // written on success only
}

TEST_F(HostOfAnImage, IsToldThatTheDataIsMissing)
{
    UInt32 type = 0;
    Handle data = nullptr;
    image->curFrame = 1;
    EXPECT_EQ(VornPluginGetObjectData(image.get(), &type, &data), paramErr);
}

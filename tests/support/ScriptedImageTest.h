// SPDX-License-Identifier: MIT
//
// An image on the scripted graphics, as the tests of call orders and failures need it.
#pragma once

#include "tests/support/ErrorOf.h"
#include "tests/support/ManualClock.h"
#include "tests/support/RectText.h"
#include "tests/support/ScriptedGraphics.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestImage.h"
#include "tests/support/ToolboxProbe.h"
#include "toolbox/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace test
{

class ScriptedImageTest : public testing::Test
{
protected:
    ScriptedImageTest()
    {
        ResetGraphics();
        host.Install();
        image = std::make_unique<TestImage>(bundle.Get());
        image->SetDisplayRect(kImageRect);
    }

    // A frame as large as the image if nothing else is said. Its world is made by the script.
    SInt16 AddFrame(UInt16 maskDepth = 0, const Rect& bounds = kImageRect)
    {
        SInt16 index = -1;
        EXPECT_EQ(image->AddNewFrame(bounds, 8, nullptr, maskDepth, index), 0);
        return index;
    }
    VornImagePlugin::TFrame& Frame(SInt16 index) { return *image->frames[index]; }
    // Decoding is over, and the calls so far are forgotten.
    void FinishDecoding()
    {
        image->FinishRendering();
        probe.Forget();
    }
    void StartAnimation(SInt16 loops = 0)
    {
        image->SetLooping(1, loops);
        FinishDecoding();
    }
    std::vector<std::string> Calls(const std::vector<std::string>& operations) const
    {
        return probe.Calls(operations);
    }
    std::vector<std::string> Copies() const
    {
        return Calls({"CopyBits", "CopyMask", "CopyDeepMask", "EraseRect"});
    }

    static constexpr Rect kImageRect = {0, 0, 40, 20};

    TestBundle bundle;
    ScriptedHost host;
    ToolboxProbe probe;
    ManualClock clock;
    std::unique_ptr<TestImage> image;
};

} // namespace test

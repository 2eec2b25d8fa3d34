// SPDX-License-Identifier: MIT
//
// An image on the real toolbox, in a window whose pixels can be looked at.
#pragma once

#include "tests/support/ManualClock.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestImage.h"
#include "tests/support/WorldPixels.h"

#include <gtest/gtest.h>

#include <memory>

namespace test
{

class ImageOnPage : public testing::Test
{
protected:
    static constexpr int kPageHeight = 60;
    static constexpr int kPageWidth = 70;
    static constexpr UInt32 kWhite = 0xFFFFFF;

    ImageOnPage();
    ~ImageOnPage() override;

    // Starts anew with an image of that size.
    void MakeImage(SInt16 height, SInt16 width);
    // Where the image is placed: unscaled, with its top left here.
    Rect Area() const;
    SInt16 AddFrame(const Rect& bounds, UInt16 depth, UInt16 maskDepth);
    void Fill(GWorldPtr world, UInt32 value);
    // A pixel of the page, 0xRRGGBB; rows and columns of the image.
    UInt32 Shown(int row, int column) const;
    bool IsWhiteOutsideTheImage(int height, int width) const;

    static constexpr SInt16 kTop = 11;
    static constexpr SInt16 kLeft = 9;

    TestBundle bundle;
    ScriptedHost host;
    ManualClock clock;
    CGrafPtr page = nullptr;
    CGrafPtr formerPort = nullptr;
    std::unique_ptr<TestImage> image;
};

} // namespace test

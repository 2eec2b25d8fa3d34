// SPDX-License-Identifier: MIT
#pragma once

#include "src/image/VornImagePlugin.h"
#include "tests/decoders/GifBuilder.h"
#include "tests/support/ArrivalHost.h"
#include "tests/support/ManualClock.h"
#include "tests/support/TestBundle.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test
{

constexpr UInt32 kNoColor = 0xFFFFFFFF;
constexpr UInt32 kWhite = 0xFFFFFF;
constexpr UInt32 kBlack = 0x000000;
constexpr UInt32 kRed = 0xFF0000;
constexpr UInt32 kGreen = 0x00FF00;
constexpr UInt32 kBlue = 0x0000FF;

using Pixels = std::vector<UInt32>; // 0xRRGGBB, row by row

// What a frame holds: two are equal if they show the same.
struct FrameContents {
    SInt16 width = 0;
    SInt16 height = 0;
    SInt16 left = 0;
    SInt16 top = 0;
    SInt32 delayTicks = 0;
    int disposal = 0;
    bool userInput = false;
    Pixels pixels; // kNoColor where the mask lets nothing through

    bool operator==(const FrameContents&) const = default;
};

// An object of the GIF bundle, driven by a host through the entry points, and a white window.
class GifTest : public testing::Test
{
protected:
    ~GifTest() override;

    // Decodes a file whose bytes are all there (or arrive `chunk` at a time) in a new object; the
    // result is the entry point's.
    OSErr Decode(const std::string& file, SInt32 chunk = 0);
    // The same as arrivals say.
    OSErr DecodeArriving(const std::string& file, const std::vector<SInt32>& arrivals);
    void NewObject();
    VornImagePlugin& Image() { return *static_cast<VornImagePlugin*>(object_); }
    SInt32 FrameCount() { return Image().frameCount; }
    FrameContents Frame(SInt16 index);
    std::vector<FrameContents> Frames();
    std::string Comment();

    // The window begins white, as large as the image.
    void OpenWindow();
    void Display();
    // Goes to the next frame's time.
    void IdleOnce();
    Pixels WindowPixels() const;

    ArrivalHost host_;
    ManualClock clock_;

private:
    void CloseWindow();

    TestBundle bundle_;
    VornPlugin* object_ = nullptr;
    CGrafPtr window_ = nullptr;
};

} // namespace test

// SPDX-License-Identifier: MIT
//
// Pixels that are drawn to by the viewer itself: 32 bits each, in memory x, R, G, B.
#pragma once

#include "toolbox/Types.h"

namespace viewer
{

struct Ink {
    UInt8 red = 0;
    UInt8 green = 0;
    UInt8 blue = 0;
};

// Everything is cut off at `clip`, which lies within the pixels.
struct Canvas {
    UInt8* pixels = nullptr;
    SInt32 rowBytes = 0;
    Rect clip{};

    void Fill(const Rect& rect, Ink ink);
    // The rectangle's edge, so many pixels wide, on its inner side.
    void Frame(const Rect& rect, SInt16 width, Ink ink);
    // `coverage`: 0 leaves the pixel as it is, 255 gives it the ink.
    void Blend(SInt32 h, SInt32 v, Ink ink, UInt8 coverage);
};

} // namespace viewer

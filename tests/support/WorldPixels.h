// SPDX-License-Identifier: MIT
//
// Reading and writing the pixels of real worlds and windows, one at a time.
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

namespace test
{

// Rows and columns count from the first pixel of the world.
void SetPixel(GWorldPtr world, int row, int column, UInt32 value);
UInt32 PixelOf(GWorldPtr world, int row, int column);

// Of a five-bit colour: at 32 bits a pixel, and as an RGBColor. Five bits come back as they were.
UInt32 Pixel32(UInt16 color15);
RGBColor RGBOf(UInt16 color15);

} // namespace test

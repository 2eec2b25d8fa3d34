// SPDX-License-Identifier: MIT
//
// The seeds of colour tables and the pixel values of colours.
#pragma once

#include "toolbox/quickdraw/PixelView.h"

namespace toolbox
{

SInt32 NextColorTableSeed();
// The value of the pixel that shows the colour best in a map of that depth and those colours.
UInt32 PixelValueOf(const RGBColor& color, int depth, CTabHandle colors);

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// Drawing into ports for the toolbox's own services (movies and their controllers).
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"

#include <vector>

namespace toolbox
{

// The parts of `rect` that may be drawn: inside the port's bounds and clip region and inside
// `clip` (null: no further limit). Port coordinates.
std::vector<Rect> VisibleRects(const CGrafPort& port, const Rect& rect, RgnHandle clip);

// Fills the visible parts of `rect` and adds them to the dirty region.
void PaintRect(CGrafPort& port, const Rect& rect, const RGBColor& color, RgnHandle clip);

// Adds a rectangle, as far as it lies in the port, to the dirty region.
void AddToDirtyRegion(CGrafPort& port, const Rect& rect);

// The pixel at (v, h), which must lie in the port's bounds.
UInt8* PixelAddress(const CGrafPort& port, SInt16 v, SInt16 h);

// A copy of a region for whoever keeps one; null for null. The caller disposes of it.
RgnHandle CopyRegion(RgnHandle region);

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// Copying between pixel maps, one pixel at a time and by the book: what the toolbox's own copying
// is compared with. It shares no code with it.
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

#include <array>
#include <memory>
#include <optional>
#include <random>
#include <vector>

namespace reference
{

// Components of 0 to 255.
using Components = std::array<int, 3>;

struct DisposeWorld {
    void operator()(CGrafPtr world) const { DisposeGWorld(world); }
};
using OwnedWorld = std::unique_ptr<CGrafPort, DisposeWorld>;

// White, or null.
OwnedWorld MakeWorld(int depth, const Rect& bounds, CTabHandle colors = nullptr);
const BitMap* BitsOf(const OwnedWorld& world);
void FillWithNoise(const OwnedWorld& world, std::mt19937& random);

// The pixel value at (v, h) as memory holds it.
UInt32 ValueAt(const BitMap* bits, int v, int h);
void SetValueAt(const BitMap* bits, int v, int h, UInt32 value);
int DepthOf(const BitMap* bits);
// What a pixel value shows, by the map's table or by its bits.
Components ColorOfValue(const BitMap* bits, UInt32 value);
Components ColorAt(const BitMap* bits, int v, int h);
// The value that shows the colour best: the top bits at 16 bits, the first of the nearest entries
// of a table.
UInt32 NearestValue(const BitMap* bits, const Components& color);
Components Blend(const Components& black, const Components& white, const Components& weights);

bool Contains(const Rect& rect, int v, int h);

} // namespace reference

// SPDX-License-Identifier: MIT
//
// Between pixels of any depth in memory and spans of colours, and between pixels of two depths
// where going straight is worth it. Columns count from the start of the row.
#pragma once

#include "toolbox/quickdraw/ColorSearch.h"

namespace toolbox
{

inline constexpr int kSpan = 512; // the most colours that are worked on at once

// `palette` is needed for indices only.
void FetchSpan(const UInt8* row, int depth, int column, int count, const Palette* palette,
               Color* colors);
// The same for direct pixels; a color's highest byte (at 16 bits, its highest bit) is what the
// pixel has besides the color, and storing puts it back.
void FetchWholeSpan(const UInt8* row, int depth, int column, int count, Color* colors);
// `search` is needed for indices only.
void StoreSpan(UInt8* row, int depth, int column, int count, const Color* colors,
               ColorSearch* search);
// The same, dithered by the place (v, h) of the first pixel in the target's coordinates. Not for
// 32 bits, which lose nothing.
void StoreDitheredSpan(UInt8* row, int depth, int column, int count, const Color* colors,
                       ColorSearch* search, int v, int h);

// Straight from 16 bits to 32.
void Widen16To32(const UInt8* from, UInt8* to, int count);

// Writes one pixel value many times.
void FillSpan(UInt8* row, int depth, int column, int count, UInt32 pixel);

// Writes `values`, one for each pixel, in `depth` bits each: 1, 2, 4 or 8.
void StoreIndices(UInt8* row, int depth, int column, int count, const UInt8* values);

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// A bit map or pixel map as drawing sees it, whichever it was.
#pragma once

#include "toolbox/quickdraw/Copying.h"

namespace toolbox
{

inline constexpr int kMostRowBytesInRecord = 0x3FFF; // its upper two bits are flags
inline constexpr SInt32 kMostRowBytes = 0xFFFF;

struct PixelView {
    UInt8* base = nullptr;
    SInt32 rowBytes = 0;
    Rect bounds{};
    int depth = 0; // 0: nothing that can be drawn with
    CTabHandle colors = nullptr;

    bool IsIndexed() const { return depth <= 8; }
    UInt8* Row(int v) const { return base + ptrdiff_t{v - bounds.top} * rowBytes; }
    int Column(int h) const { return h - bounds.left; }
};

// Of either kind, as callers pass them: see Copying.h.
PixelView ViewOf(const BitMap& map);
PixelView ViewOf(const PixMap& map);
// Bytes from one row of a pixel map to the next, without flag bits.
SInt32 RowBytesOf(const PixMap& map);
bool IsPixelDepth(int depth);

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// Putting pixels into a row only where a mask lets them.
#pragma once

#include "toolbox/quickdraw/Palette.h"

namespace toolbox
{

// Copies `count` pixels of `depth` bits (8, 16 or 32) where the bit of the mask, from
// `maskColumn` on, is set.
void CopyMaskedPixels(const UInt8* from, UInt8* to, int depth, int count, const UInt8* mask,
                      int maskColumn);
// The same for pixels of any depth, both from `column` on.
void CopyMaskedRow(const UInt8* from, UInt8* to, int depth, int column, int count,
                   const UInt8* mask, int maskColumn);

// The part of a mask's row, `count` bits from `column` on, that all its set bits lie in; of no length
// if there are none. Clear bits of the bytes at both ends may be in it.
struct MaskPart {
    int column;
    int count;
};
MaskPart PartWithSetBits(const UInt8* mask, int column, int count);

// Makes a one-bit mask with bits set where the deep mask is not all white.
void MaskOfNonWhite(const Color* deepMask, int count, UInt8* mask);

} // namespace toolbox

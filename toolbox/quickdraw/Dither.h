// SPDX-License-Identifier: MIT
//
// Ordered dithering. Every pixel of the target stands in a cell of an 8 by 8 pattern, by its
// coordinates; so pictures that are drawn in parts, or again, come out the same.
#pragma once

#include "toolbox/quickdraw/ColorSearch.h"

#include <array>

namespace toolbox
{

inline constexpr int kDitherSize = 8;

// One row of the pattern, twice: so that a row of any first cell can be read without wrapping.
template <typename Value>
using DitherRow = std::array<Value, 2 * size_t{kDitherSize}>;

// What to add before dividing: see Dithered555.
const DitherRow<UInt16>& DitherBiases(int v);

// The 16-bit pixel of a colour. A component of 5 bits that was widened to 8 comes back as it was
// with any bias: so copying to 32 bits and back changes nothing.
inline UInt16 Dithered555(Color color, UInt32 bias)
{
    const auto narrow = [bias](UInt32 component) {
        const UInt32 sum = (component << 5) - component + bias; // 31 steps
        return (sum + 1 + (sum >> 8)) >> 8;                     // divided by 255
    };
    return static_cast<UInt16>((color >> 16 & 0x8000) | narrow(color >> 16 & 0xFF) << 10 |
                               narrow(color >> 8 & 0xFF) << 5 | narrow(color & 0xFF));
}

// The value for a colour at (v, h); without dithering where the palette has that very colour.
UInt8 DitheredIndex(Color color, ColorSearch& search, int v, int h);

} // namespace toolbox

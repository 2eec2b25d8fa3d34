// SPDX-License-Identifier: MIT
//
// A colour table as drawing uses it: a colour for every pixel value.
#pragma once

#include "toolbox/quickdraw/Copying.h"

#include <array>

namespace toolbox
{

// A colour in drawing is the number 0x00RRGGBB.
using Color = UInt32;

struct Palette {
    std::array<Color, 256> colors{}; // black where the table names none
    int count = 0;                   // values from this on are not in the table
    SInt32 seed = 0;                 // 0: of a table that cannot be told from others
};

Color ColorFromRGB(const RGBColor& color);
// The palette of a colour table; for null, of the platform's table of that depth. Remembered by
// the table's seed: a table whose contents change needs a new one. Valid until the next call.
const Palette& PaletteOf(CTabHandle table, int depth);

// The platform's table for a depth of up to 8 bits, as a new handle; null without memory.
CTabHandle MakeDefaultColorTable(int depth);
// A copy of a table, with a seed of its own if that has none; null without memory.
CTabHandle CopyColorTable(CTabHandle table);

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// The nearest colour of a palette.
#pragma once

#include "toolbox/quickdraw/Palette.h"

namespace toolbox
{

// Exact: the first of the colours with the least sum of squared differences. What was once found
// is remembered.
class ColorSearch
{
public:
    // For pixels of `depth` bits.
    void Begin(const Palette& palette, int depth);
    bool IsFor(const Palette& palette, int depth) const
    {
        return palette.seed != 0 && palette.seed == seed_ && depth == depth_;
    }

    UInt8 Nearest(Color color)
    {
        UInt32& slot = found_[Hash(color)];
        if (slot >> 8 != color) {
            slot = color << 8 | Search(color);
        }
        return static_cast<UInt8>(slot);
    }
    Color ColorAt(UInt8 value) const { return colors_[value] & 0xFFFFFF; }
    // How far apart neighbouring colours are, about: what dithering has to bridge.
    int Spread() const { return spread_; }

private:
    static constexpr size_t kSlots = 4096;
    // A cell is 16 by 16 by 16 colours, which differ in the lower halves of their components, and
    // has those of the palette that can be the nearest to one of them; the first one to the end.
    static constexpr size_t kCells = 4096;
    static constexpr int kCellColors = 16;
    using Cell = std::array<UInt32, kCellColors>;
    enum class CellState : UInt8 { kUnknown, kFilled, kTooSmall };

    static size_t Hash(Color color) { return color * 0x9E3779B1U >> 20; }
    UInt32 Search(Color color);
    CellState Fill(Cell& cell, Color first) const;

    std::array<UInt32, kSlots> found_{}; // the color in the upper 24 bits, then the value
    std::array<CellState, kCells> states_{};
    std::array<Cell, kCells> cells_{};
    std::array<UInt32, 256> colors_{}; // with their values in the highest bytes, as in cells
    int count_ = 0;
    int depth_ = 0;
    int spread_ = 0;
    SInt32 seed_ = 0;
};

// The search in a palette, remembered by its seed. Valid until the next call.
ColorSearch& SearchOf(const Palette& palette, int depth);

} // namespace toolbox

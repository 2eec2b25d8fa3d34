// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/ColorSearch.h"

#include "toolbox/CpuVersions.h"

#include <algorithm>

namespace toolbox
{
namespace
{

bool IsGrey(Color color)
{
    return (color & 0xFF) == (color >> 8 & 0xFF) && (color & 0xFF) == color >> 16;
}

// The distance of neighbours if the colours were spread evenly over the greys or over the cube.
int SpreadOf(const Color* colors, int count)
{
    int levels = count;
    if (!std::all_of(colors, colors + count, IsGrey)) {
        levels = 2;
        while ((levels + 1) * (levels + 1) * (levels + 1) <= count) {
            ++levels;
        }
    }
    return 255 / std::max(levels - 1, 1);
}

inline SInt32 Red(Color color)
{
    return static_cast<SInt32>(color >> 16 & 0xFF);
}

inline SInt32 Green(Color color)
{
    return static_cast<SInt32>(color >> 8 & 0xFF);
}

inline SInt32 Blue(Color color)
{
    return static_cast<SInt32>(color & 0xFF);
}

inline UInt32 SumOfSquares(SInt32 red, SInt32 green, SInt32 blue)
{
    return static_cast<UInt32>(red * red + green * green + blue * blue);
}

// Distance above the value, so that the least of them names the first of the nearest.
VORN_CPU_VERSIONS UInt32 SearchColors(const UInt32* colors, int count, Color color)
{
    UInt32 best = UINT32_MAX;
    for (int i = 0; i < count; ++i) {
        const UInt32 distance =
            SumOfSquares(Red(colors[i]) - Red(color), Green(colors[i]) - Green(color),
                         Blue(colors[i]) - Blue(color));
        best = std::min(best, distance << 8 | colors[i] >> 24);
    }
    return best & 0xFF;
}

// How far a component of a colour lies from the nearest and from the farthest of a cell.
constexpr SInt32 kCellSide = 16;

inline SInt32 ToNearest(SInt32 component, SInt32 first)
{
    return std::max(std::max(first - component, component - (first + kCellSide - 1)), 0);
}

inline SInt32 ToFarthest(SInt32 component, SInt32 first)
{
    return std::max(first + kCellSide - 1 - component, component - first);
}

// Of all colours the distance to what is nearest in a cell; returns the least distance to what is
// farthest in it.
VORN_CPU_VERSIONS UInt32 MeasureCell(const UInt32* colors, int count, Color first,
                                     UInt32* distances)
{
    UInt32 least = UINT32_MAX;
    for (int i = 0; i < count; ++i) {
        const Color color = colors[i];
        distances[i] =
            SumOfSquares(ToNearest(Red(color), Red(first)), ToNearest(Green(color), Green(first)),
                         ToNearest(Blue(color), Blue(first)));
        least = std::min(least, SumOfSquares(ToFarthest(Red(color), Red(first)),
                                             ToFarthest(Green(color), Green(first)),
                                             ToFarthest(Blue(color), Blue(first))));
    }
    return least;
}

} // namespace

void ColorSearch::Begin(const Palette& palette, int depth)
{
    found_.fill(0);         // black, which is found in slot 0 only …
    found_[0] = 0xFFFFFF00; // … and white, which is not
    states_.fill(CellState::kUnknown);
    for (UInt32 value = 0; value < colors_.size(); ++value) {
        colors_[value] = value << 24 | palette.colors[value];
    }
    count_ = std::clamp(palette.count, 1, 1 << depth);
    depth_ = depth;
    seed_ = palette.seed;
    spread_ = SpreadOf(palette.colors.data(), count_);
}

UInt32 ColorSearch::Search(Color color)
{
    const size_t place = (color >> 12 & 0xF00) | (color >> 8 & 0xF0) | (color >> 4 & 0xF);
    if (states_[place] == CellState::kUnknown) {
        states_[place] = Fill(cells_[place], color & 0xF0F0F0);
    }
    if (states_[place] == CellState::kTooSmall) {
        return SearchColors(colors_.data(), count_, color);
    }
    return SearchColors(cells_[place].data(), kCellColors, color);
}

// None is the nearest to any colour that is further from all of them than another one is at most.
ColorSearch::CellState ColorSearch::Fill(Cell& cell, Color first) const
{
    std::array<UInt32, 256> distances;
    const UInt32 limit = MeasureCell(colors_.data(), count_, first, distances.data());
    size_t count = 0;
    for (size_t i = 0; i < static_cast<size_t>(count_); ++i) {
        if (distances[i] > limit) {
            continue;
        }
        if (count == cell.size()) {
            return CellState::kTooSmall;
        }
        cell[count++] = colors_[i];
    }
    std::fill(cell.begin() + count, cell.end(), cell[0]);
    return CellState::kFilled;
}

ColorSearch& SearchOf(const Palette& palette, int depth)
{
    static std::array<ColorSearch, 8> searches;
    static size_t oldest = 0;
    for (ColorSearch& search : searches) {
        if (search.IsFor(palette, depth)) {
            return search;
        }
    }
    ColorSearch& search = searches[oldest++ % searches.size()];
    search.Begin(palette, depth);
    return search;
}

} // namespace toolbox

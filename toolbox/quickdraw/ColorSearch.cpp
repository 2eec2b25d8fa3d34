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

// Distance above the index, so that the least of them names the first of the nearest.
VORN_CPU_VERSIONS UInt32 SearchColors(const Color* colors, int count, Color color)
{
    const auto red = static_cast<SInt32>(color >> 16);
    const auto green = static_cast<SInt32>(color >> 8 & 0xFF);
    const auto blue = static_cast<SInt32>(color & 0xFF);
    UInt32 best = UINT32_MAX;
    for (int i = 0; i < count; ++i) {
        const SInt32 dr = static_cast<SInt32>(colors[i] >> 16) - red;
        const SInt32 dg = static_cast<SInt32>(colors[i] >> 8 & 0xFF) - green;
        const SInt32 db = static_cast<SInt32>(colors[i] & 0xFF) - blue;
        const UInt32 distance = static_cast<UInt32>(dr * dr + dg * dg + db * db);
        best = std::min(best, distance << 8 | static_cast<UInt32>(i));
    }
    return best & 0xFF;
}

} // namespace

void ColorSearch::Begin(const Palette& palette, int depth)
{
    found_.fill(0);         // black, which is found in slot 0 only …
    found_[0] = 0xFFFFFF00; // … and white, which is not
    colors_ = palette.colors;
    count_ = std::clamp(palette.count, 1, 1 << depth);
    depth_ = depth;
    seed_ = palette.seed;
    spread_ = SpreadOf(colors_.data(), count_);
}

UInt32 ColorSearch::Search(Color color) const
{
    return SearchColors(colors_.data(), count_, color);
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

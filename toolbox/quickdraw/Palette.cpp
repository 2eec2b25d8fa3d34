// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Palette.h"

#include "toolbox/memory/Memory.h"
#include "toolbox/quickdraw/Colors.h"

#include <algorithm>
#include <cstring>

namespace toolbox
{
namespace
{

constexpr UInt16 kValuesArePositions = 0x8000; // of ctFlags: a device's table
constexpr UInt32 kMaxEntries = 256;
constexpr size_t kCachedPalettes = 64; // a power of 2

Color Grey(UInt32 level)
{
    return level << 16 | level << 8 | level;
}

// Red, green, blue and grey ramps of the system's palette: what the cube's sixths leave out.
void AddRamps(Palette& palette)
{
    for (int ramp = 0; ramp < 4; ++ramp) {
        for (UInt32 level = 0xEE; level > 0; level -= 0x11) {
            if (level % 0x33 == 0) {
                continue;
            }
            const Color color = ramp == 3 ? Grey(level) : level << (16 - 8 * ramp);
            palette.colors[static_cast<size_t>(palette.count++)] = color;
        }
    }
}

Palette MakeSystemPalette()
{
    Palette palette;
    for (UInt32 i = 0; i < 6 * 6 * 6 - 1; ++i) { // white first; black comes last of all
        const UInt32 red = 5 - i / 36;
        const UInt32 green = 5 - i / 6 % 6;
        const UInt32 blue = 5 - i % 6;
        palette.colors[static_cast<size_t>(palette.count++)] =
            (red << 16 | green << 8 | blue) * 0x33;
    }
    AddRamps(palette);
    palette.colors[static_cast<size_t>(palette.count++)] = Grey(0);
    return palette;
}

Palette MakeSmallPalette(int depth)
{
    static constexpr std::array<Color, 2> kBits = {0xFFFFFF, 0x000000};
    static constexpr std::array<Color, 4> kGreys = {0xFFFFFF, 0xAAAAAA, 0x555555, 0x000000};
    static constexpr std::array<Color, 16> kColors = {
        0xFFFFFF, 0xFCF305, 0xFF6403, 0xDD0907, 0xF20884, 0x4700A5, 0x0000D3, 0x02ABEA,
        0x1FB714, 0x006412, 0x562C05, 0x90713A, 0xC0C0C0, 0x808080, 0x404040, 0x000000};
    Palette palette;
    palette.count = 1 << depth;
    if (depth == 1) {
        std::copy(kBits.begin(), kBits.end(), palette.colors.begin());
    } else if (depth == 2) {
        std::copy(kGreys.begin(), kGreys.end(), palette.colors.begin());
    } else {
        std::copy(kColors.begin(), kColors.end(), palette.colors.begin());
    }
    return palette;
}

const Palette& DefaultPalette(int depth)
{
    static const std::array<Palette, 4> palettes = [] {
        std::array<Palette, 4> made = {MakeSmallPalette(1), MakeSmallPalette(2),
                                       MakeSmallPalette(4), MakeSystemPalette()};
        for (size_t i = 0; i < made.size(); ++i) {
            made[i].seed = 1 << i; // the platform's seed is the depth
        }
        return made;
    }();
    return palettes[depth == 1 ? 0 : depth == 2 ? 1 : depth == 4 ? 2 : 3];
}

size_t CountEntries(const ColorTable& table)
{
    return std::min<size_t>(static_cast<size_t>(std::max(table.ctSize + 1, 0)), kMaxEntries);
}

void Convert(const ColorTable& table, Palette& palette)
{
    palette.seed = table.ctSeed;
    palette.colors.fill(0);
    palette.count = 0;
    const bool valuesArePositions = (static_cast<UInt16>(table.ctFlags) & kValuesArePositions) != 0;
    for (size_t i = 0; i < CountEntries(table); ++i) {
        const ColorSpec& entry = table.ctTable[i];
        const size_t value =
            valuesArePositions ? i : static_cast<size_t>(static_cast<UInt16>(entry.value));
        if (value < kMaxEntries) {
            palette.colors[value] = ColorFromRGB(entry.rgb);
            palette.count = std::max(palette.count, static_cast<int>(value) + 1);
        }
    }
}

RGBColor RGBFromColor(Color color)
{
    const auto widen = [](UInt32 component) {
        return static_cast<UInt16>((component & 0xFF) * 0x101);
    };
    return {widen(color >> 16), widen(color >> 8), widen(color)};
}

constexpr Size BytesFor(size_t entries)
{
    return static_cast<Size>(offsetof(ColorTable, ctTable) + entries * sizeof(ColorSpec));
}

} // namespace

Color ColorFromRGB(const RGBColor& color)
{
    return static_cast<UInt32>(color.red >> 8) << 16 | static_cast<UInt32>(color.green >> 8) << 8 |
           static_cast<UInt32>(color.blue >> 8);
}

const Palette& PaletteOf(CTabHandle table, int depth)
{
    if (table == nullptr || *table == nullptr) {
        return DefaultPalette(depth);
    }
    const ColorTable& block = **table;
    if (block.ctSeed == 0) {
        static Palette unnamed;
        Convert(block, unnamed);
        return unnamed;
    }
    static std::array<Palette, kCachedPalettes> cache;
    Palette& palette = cache[static_cast<UInt32>(block.ctSeed) % kCachedPalettes];
    if (palette.seed != block.ctSeed) {
        Convert(block, palette);
    }
    return palette;
}

CTabHandle MakeDefaultColorTable(int depth)
{
    const Palette& palette = DefaultPalette(depth);
    const auto entries = static_cast<size_t>(palette.count);
    auto const handle = reinterpret_cast<CTabHandle>(NewHandleClear(BytesFor(entries)));
    if (handle == nullptr) {
        return nullptr;
    }
    ColorTable& table = **handle;
    table.ctSeed = palette.seed;
    table.ctSize = static_cast<SInt16>(entries - 1);
    for (size_t i = 0; i < entries; ++i) {
        table.ctTable[i] = {static_cast<SInt16>(i), RGBFromColor(palette.colors[i])};
    }
    return handle;
}

CTabHandle CopyColorTable(CTabHandle table)
{
    const Size size = BytesFor(CountEntries(**table));
    auto const copy = reinterpret_cast<CTabHandle>(NewHandle(size));
    if (copy == nullptr) {
        return nullptr;
    }
    std::memcpy(*copy, *table, static_cast<size_t>(size));
    (*copy)->ctSize = static_cast<SInt16>(CountEntries(**table) - 1);
    if ((*copy)->ctSeed == 0) {
        (*copy)->ctSeed = NextColorTableSeed();
    }
    return copy;
}

} // namespace toolbox

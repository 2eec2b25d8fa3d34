// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Dither.h"

#include <algorithm>

namespace toolbox
{
namespace
{

constexpr int kCells = kDitherSize * kDitherSize;
constexpr size_t kCellMask = kDitherSize - 1;

// Widening 5 bits to 8 errs by up to 21/255 of a step; the biases leave that much free at both
// ends.
constexpr int kLeastBias = 21;
constexpr int kMostBias = 254 - 21;

// The order in which the cells of the pattern fill up as a component grows: the bits of the
// column and of column xor row, interlaced and reversed.
constexpr int RankOf(size_t v, size_t h)
{
    int rank = 0;
    for (size_t bit = 0; bit < 3; ++bit) {
        rank = rank << 2 | static_cast<int>(((h ^ v) >> bit & 1) << 1 | (v >> bit & 1));
    }
    return rank;
}

constexpr auto kBiases = [] {
    std::array<DitherRow<UInt16>, kDitherSize> biases{};
    for (size_t v = 0; v < kDitherSize; ++v) {
        for (size_t h = 0; h < biases[v].size(); ++h) {
            const int rank = RankOf(v, h & kCellMask);
            biases[v][h] =
                static_cast<UInt16>(kLeastBias + rank * (kMostBias - kLeastBias) / (kCells - 1));
        }
    }
    return biases;
}();

} // namespace

const DitherRow<UInt16>& DitherBiases(int v)
{
    return kBiases[static_cast<size_t>(v) & kCellMask];
}

UInt8 DitheredIndex(Color color, ColorSearch& search, int v, int h)
{
    const UInt8 nearest = search.Nearest(color);
    if (search.ColorAt(nearest) == color) {
        return nearest;
    }
    const int rank = RankOf(static_cast<size_t>(v) & kCellMask, static_cast<size_t>(h) & kCellMask);
    const int offset = (2 * rank + 1 - kCells) * search.Spread() / (2 * kCells);
    const auto moved = [offset](UInt32 component) {
        return static_cast<UInt32>(
            std::clamp(static_cast<int>(component & 0xFF) + offset, 0, 0xFF));
    };
    return search.Nearest(moved(color >> 16) << 16 | moved(color >> 8) << 8 | moved(color));
}

} // namespace toolbox

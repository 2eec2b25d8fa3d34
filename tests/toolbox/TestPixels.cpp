// SPDX-License-Identifier: MIT
#include "tests/toolbox/TestPixels.h"

#include "toolbox/memory/Memory.h"
#include "toolbox/quickdraw/PixelView.h"

#include <algorithm>
#include <random>

namespace test
{
namespace
{

constexpr int kSpareRowBytes = 6;

UInt32 ColorAt(const PixMap& map, int row, int column)
{
    const int depth = map.pixelSize;
    const UInt8* const first =
        reinterpret_cast<const UInt8*>(map.baseAddr) + ptrdiff_t{row} * toolbox::RowBytesOf(map);
    const UInt8* const at = first + column * depth / 8;
    if (depth == 32) {
        return static_cast<UInt32>(at[1] << 16 | at[2] << 8 | at[3]);
    }
    if (depth == 16) {
        const int pixel = at[0] << 8 | at[1];
        const auto eightBits = [&](int shift) {
            const int five = pixel >> shift & 31;
            return static_cast<UInt32>(five << 3 | five >> 2);
        };
        return eightBits(10) << 16 | eightBits(5) << 8 | eightBits(0);
    }
    const int shift = 8 - depth - column * depth % 8;
    const int index = *at >> shift & ((1 << depth) - 1);
    const ColorSpec* const entries = (*map.pmTable)->ctTable;
    const RGBColor& color = entries[index].rgb;
    return static_cast<UInt32>((color.red >> 8) << 16 | (color.green >> 8) << 8 | color.blue >> 8);
}

} // namespace

TestPixels::TestPixels(int depth, const Rect& bounds)
{
    const int width = bounds.right - bounds.left;
    const int rowBytes = (width * depth + 15) / 16 * 2 + kSpareRowBytes;
    const int height = bounds.bottom - bounds.top;
    bytes_.resize(static_cast<size_t>(rowBytes) * static_cast<size_t>(height));
    map_.baseAddr = reinterpret_cast<Ptr>(bytes_.data());
    map_.rowBytes = static_cast<SInt16>(static_cast<UInt16>((rowBytes & 0x3FFF) | 0x8000));
    map_.packSize = rowBytes > 0x3FFF ? rowBytes : 0;
    map_.bounds = bounds;
    map_.hRes = map_.vRes = 72 << 16;
    map_.pixelType = depth > 8 ? 16 : 0;
    map_.pixelSize = static_cast<SInt16>(depth);
    map_.cmpCount = depth > 8 ? 3 : 1;
    map_.cmpSize = static_cast<SInt16>(depth == 16 ? 5 : std::min(depth, 8));
    FillAtRandom();
    if (depth <= 8) {
        MakeTable(depth);
    }
}

TestPixels::~TestPixels()
{
    DisposeHandle(reinterpret_cast<Handle>(table_));
}

std::vector<UInt32> TestPixels::ColorsOf(const PixMap& map, const Rect& part)
{
    std::vector<UInt32> colors;
    for (int v = part.top; v < part.bottom; ++v) {
        for (int h = part.left; h < part.right; ++h) {
            colors.push_back(ColorAt(map, v - map.bounds.top, h - map.bounds.left));
        }
    }
    return colors;
}

void TestPixels::SetRow(size_t row, const std::vector<UInt8>& bytes)
{
    const ptrdiff_t rowBytes = toolbox::RowBytesOf(map_);
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<ptrdiff_t>(row) * rowBytes);
}

void TestPixels::PutTableInIndexOrder()
{
    (*table_)->ctFlags = static_cast<SInt16>(0x8000);
    ColorSpec* const entries = (*table_)->ctTable;
    for (int i = 0; i <= (*table_)->ctSize; ++i) {
        entries[i].value = 77;
    }
}

// Colours of which each component tells indices apart.
void TestPixels::MakeTable(int depth)
{
    const int count = 1 << depth;
    table_ = reinterpret_cast<CTabHandle>(NewHandle(8 + 8 * count));
    (*table_)->ctSeed = GetCTSeed();
    (*table_)->ctFlags = 0;
    (*table_)->ctSize = static_cast<SInt16>(count - 1);
    ColorSpec* const entries = (*table_)->ctTable;
    for (int i = 0; i < count; ++i) {
        const auto component = [&](int factor) {
            return static_cast<UInt16>(((i * factor + 40) & 0xFF) * 0x0101);
        };
        entries[i] = {static_cast<SInt16>(i), {component(1), component(255), component(7)}};
    }
    map_.pmTable = table_;
}

void TestPixels::FillAtRandom()
{
    std::mt19937 random(static_cast<unsigned>(bytes_.size()));
    const auto below = [&](unsigned limit) { return static_cast<size_t>(random() % limit); };
    for (size_t i = 0; i < bytes_.size();) {
        const size_t end = std::min(bytes_.size(), i + 1 + below(300));
        const bool run = below(2) == 0;
        const auto value = static_cast<UInt8>(random());
        for (; i < end; ++i) {
            bytes_[i] = run ? value : static_cast<UInt8>(random());
        }
    }
}

} // namespace test

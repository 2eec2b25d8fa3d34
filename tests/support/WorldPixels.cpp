// SPDX-License-Identifier: MIT
#include "tests/support/WorldPixels.h"

namespace test
{
namespace
{

UInt8* RowOf(GWorldPtr world, int row)
{
    PixMapHandle pixels = GetGWorldPixMap(world);
    return reinterpret_cast<UInt8*>(GetPixBaseAddr(pixels)) + row * GetPixRowBytes(pixels);
}

int DepthOf(GWorldPtr world)
{
    return (*GetGWorldPixMap(world))->pixelSize;
}

UInt8 Component(UInt16 color15, int shift)
{
    const int five = (color15 >> shift) & 31;
    return static_cast<UInt8>(five << 3 | five >> 2);
}

} // namespace

void SetPixel(GWorldPtr world, int row, int column, UInt32 value)
{
    const int depth = DepthOf(world);
    UInt8* bytes = RowOf(world, row);
    if (depth == 1) {
        const auto bit = static_cast<UInt8>(0x80 >> (column % 8));
        UInt8& byte = bytes[column / 8];
        byte = static_cast<UInt8>(value != 0 ? byte | bit : byte & ~bit);
        return;
    }
    const int size = depth / 8;
    for (int place = 0; place < size; ++place) {
        bytes[column * size + place] = static_cast<UInt8>(value >> (8 * (size - 1 - place)));
    }
}

UInt32 PixelOf(GWorldPtr world, int row, int column)
{
    const int depth = DepthOf(world);
    const UInt8* bytes = RowOf(world, row);
    if (depth == 1) {
        return bytes[column / 8] >> (7 - column % 8) & 1U;
    }
    UInt32 value = 0;
    const int size = depth / 8;
    for (int place = 0; place < size; ++place) {
        value = value << 8 | bytes[column * size + place];
    }
    return depth == 32 ? value & 0xFFFFFF : value;
}

UInt32 Pixel32(UInt16 color15)
{
    return static_cast<UInt32>(Component(color15, 10)) << 16 |
           static_cast<UInt32>(Component(color15, 5)) << 8 | Component(color15, 0);
}

RGBColor RGBOf(UInt16 color15)
{
    const auto wide = [&](int shift) {
        return static_cast<UInt16>(Component(color15, shift) * 0x101);
    };
    return {wide(10), wide(5), wide(0)};
}

} // namespace test

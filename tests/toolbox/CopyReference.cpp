// SPDX-License-Identifier: MIT
#include "CopyReference.h"

namespace reference
{
namespace
{

const PixMap* PixMapOf(const BitMap* bits)
{
    return bits->rowBytes < 0 ? reinterpret_cast<const PixMap*>(bits) : nullptr;
}

struct Place {
    UInt8* byte;
    int shift; // of pixels smaller than a byte
};

Place PlaceOf(const BitMap* bits, int v, int h)
{
    const int depth = DepthOf(bits);
    const int bit = (h - bits->bounds.left) * depth;
    auto* const row = reinterpret_cast<UInt8*>(bits->baseAddr) +
                      static_cast<ptrdiff_t>(v - bits->bounds.top) * (bits->rowBytes & 0x3FFF);
    return {row + bit / 8, depth < 8 ? 8 - depth - bit % 8 : 0};
}

int TableSize(const BitMap* bits)
{
    const PixMap* const map = PixMapOf(bits);
    return map == nullptr ? 2 : (*map->pmTable)->ctSize + 1;
}

int Widened(UInt32 fiveBits)
{
    return static_cast<int>(fiveBits << 3 | fiveBits >> 2);
}

} // namespace

OwnedWorld MakeWorld(int depth, const Rect& bounds, CTabHandle colors)
{
    GWorldPtr world = nullptr;
    NewGWorld(&world, static_cast<SInt16>(depth), &bounds, colors, nullptr, 0);
    return OwnedWorld(world);
}

const BitMap* BitsOf(const OwnedWorld& world)
{
    return reinterpret_cast<const BitMap*>(*GetGWorldPixMap(world.get()));
}

void FillWithNoise(const OwnedWorld& world, std::mt19937& random)
{
    PixMapHandle const pixels = GetGWorldPixMap(world.get());
    const Rect& bounds = (*pixels)->bounds;
    const int bytes = GetPixRowBytes(pixels) * (bounds.bottom - bounds.top);
    for (int i = 0; i < bytes; ++i) {
        GetPixBaseAddr(pixels)[i] = static_cast<char>(random());
    }
}

int DepthOf(const BitMap* bits)
{
    const PixMap* const map = PixMapOf(bits);
    return map == nullptr ? 1 : map->pixelSize;
}

UInt32 ValueAt(const BitMap* bits, int v, int h)
{
    const int depth = DepthOf(bits);
    const Place place = PlaceOf(bits, v, h);
    if (depth < 8) {
        return static_cast<UInt32>(*place.byte >> place.shift & ((1 << depth) - 1));
    }
    UInt32 value = 0;
    for (int i = 0; i < depth / 8; ++i) {
        value = value << 8 | place.byte[i];
    }
    return value;
}

void SetValueAt(const BitMap* bits, int v, int h, UInt32 value)
{
    const int depth = DepthOf(bits);
    const Place place = PlaceOf(bits, v, h);
    if (depth < 8) {
        const int field = ((1 << depth) - 1) << place.shift;
        *place.byte =
            static_cast<UInt8>((*place.byte & ~field) | static_cast<int>(value) << place.shift);
        return;
    }
    for (int i = 0; i < depth / 8; ++i) {
        place.byte[i] = static_cast<UInt8>(value >> (depth - 8 - 8 * i));
    }
}

Components ColorOfValue(const BitMap* bits, UInt32 value)
{
    const int depth = DepthOf(bits);
    if (depth == 32) {
        return {static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 8 & 255),
                static_cast<int>(value & 255)};
    }
    if (depth == 16) {
        return {Widened(value >> 10 & 31), Widened(value >> 5 & 31), Widened(value & 31)};
    }
    if (PixMapOf(bits) == nullptr) {
        return value == 0 ? Components{255, 255, 255} : Components{0, 0, 0};
    }
    if (static_cast<int>(value) >= TableSize(bits)) {
        return {0, 0, 0};
    }
    const RGBColor& color = (*PixMapOf(bits)->pmTable)->ctTable[value].rgb;
    return {color.red >> 8, color.green >> 8, color.blue >> 8};
}

Components ColorAt(const BitMap* bits, int v, int h)
{
    return ColorOfValue(bits, ValueAt(bits, v, h));
}

UInt32 NearestValue(const BitMap* bits, const Components& color)
{
    const int depth = DepthOf(bits);
    const auto component = [&](size_t i) { return static_cast<UInt32>(color[i]); };
    if (depth == 32) {
        return component(0) << 16 | component(1) << 8 | component(2);
    }
    if (depth == 16) {
        return component(0) / 8 << 10 | component(1) / 8 << 5 | component(2) / 8;
    }
    UInt32 best = 0;
    int least = INT32_MAX;
    for (int value = 0; value < std::min(TableSize(bits), 1 << depth); ++value) {
        const Components entry = ColorOfValue(bits, static_cast<UInt32>(value));
        int distance = 0;
        for (size_t i = 0; i < 3; ++i) {
            distance += (entry[i] - color[i]) * (entry[i] - color[i]);
        }
        if (distance < least) {
            least = distance;
            best = static_cast<UInt32>(value);
        }
    }
    return best;
}

Components Blend(const Components& black, const Components& white, const Components& weights)
{
    Components blended{};
    for (size_t i = 0; i < 3; ++i) {
        blended[i] = (2 * (black[i] * (255 - weights[i]) + white[i] * weights[i]) + 255) / 510;
    }
    return blended;
}

bool Contains(const Rect& rect, int v, int h)
{
    return v >= rect.top && v < rect.bottom && h >= rect.left && h < rect.right;
}

} // namespace reference

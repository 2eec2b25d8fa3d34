// SPDX-License-Identifier: MIT
//
// Single pixels, and rows of pixels of any depth. Words are stored byte by byte, high byte first;
// the compiler makes one store of them.
#include "src/image/PixelWriting.h"

#include "src/image/PackedPixels.h"
#include "toolbox/quickdraw/QDOffscreen.h"

#include <cstring>

namespace
{

// A place in pixel memory: the row's first byte and the column in it, which may be negative.
struct PixelPlace {
    UInt8* row;
    SInt16 column;
};

// Columns wrap at 16 bits, rows do not.
PixelPlace Locate(const PixelWriteState& state, Point place)
{
    const ptrdiff_t row = ptrdiff_t{place.v} + state.rowOffset;
    return {state.baseAddr + row * state.rowBytes,
            static_cast<SInt16>(place.h + state.columnOffset)};
}

bool IsRowInside(const Rect& clip, SInt16 v)
{
    return clip.top <= v && v < clip.bottom;
}

bool IsInside(const Rect& clip, Point place)
{
    return IsRowInside(clip, place.v) && clip.left <= place.h && place.h < clip.right;
}

// A row is written whole or not at all. The sum is wider than 16 bits, so that it cannot wrap.
bool IsInside(const Rect& clip, Point start, SInt16 count)
{
    return count > 0 && IsRowInside(clip, start.v) && clip.left <= start.h &&
           start.h + count <= clip.right;
}

void Store16(UInt8* to, UInt32 value)
{
    to[0] = static_cast<UInt8>(value >> 8);
    to[1] = static_cast<UInt8>(value);
}

void Store32(UInt8* to, UInt32 value)
{
    Store16(to, value >> 16);
    Store16(to + 2, value);
}

UInt32 Load16(const UInt8* from)
{
    return static_cast<UInt32>(from[0] << 8 | from[1]);
}

UInt32 Load32(const UInt8* from)
{
    return Load16(from) << 16 | Load16(from + 2);
}

void CopyBytes(UInt8* to, const UInt8* from, SInt32 count)
{
    // The source may be the row itself: decoders unpack in place.
    std::memmove(to, from, static_cast<size_t>(count));
}

} // namespace

void PrepareSetPixel(PixMapHandle pixels, PixelWriteState* state)
{
    state->depth = static_cast<UInt8>((*pixels)->pixelSize);
    state->prepared = 1;
    state->rowBytes = static_cast<UInt16>(GetPixRowBytes(pixels));
    state->baseAddr = reinterpret_cast<UInt8*>(GetPixBaseAddr(pixels));
    state->rowOffset = 0;
    state->columnOffset = 0;
    state->bounds = (*pixels)->bounds;
}

void PrepareSetBit(const BitMap* bits, PixelWriteState* state)
{
    constexpr int kWithoutFlags = 0x3FFF;
    state->depth = 1;
    state->rowBytes = static_cast<UInt16>(bits->rowBytes & kWithoutFlags);
    state->baseAddr = reinterpret_cast<UInt8*>(bits->baseAddr);
}

void SetPixMapPixel(PixelWriteState* state, const Rect* clip, Point place, UInt32 value)
{
    if (!IsInside(*clip, place))
        return;
    const auto [row, column] = Locate(*state, place);
    switch (state->depth) {
    case 1:
        StorePacked<1>(row, column, value);
        break;
    case 2:
        StorePacked<2>(row, column, value);
        break;
    case 4:
        StorePacked<4>(row, column, value);
        break;
    case 8:
        row[column] = static_cast<UInt8>(value);
        break;
    case 16:
        Store16(row + ptrdiff_t{column} * 2, value);
        break;
    case 32:
        Store32(row + ptrdiff_t{column} * 4, value);
        break;
    default:
        break;
    }
}

void SetPixMapRowPixels(PixelWriteState* state, const Rect* clip, Point start, SInt16 count,
                        const UInt8* pixels)
{
    if (!IsInside(*clip, start, count))
        return;
    const auto [row, column] = Locate(*state, start);
    switch (state->depth) {
    case 1:
        StoreBitRow(row, column, count, pixels);
        break;
    case 2:
        StorePairRow(row, column, count, pixels);
        break;
    case 4:
        StoreNibbleRow(row, column, count, pixels);
        break;
    case 8:
        CopyBytes(row + column, pixels, count);
        break;
    default:
        break;
    }
}

void SetMaskPixMapRowPixels(PixelWriteState* state, const Rect* clip, Point start, SInt16 count,
                            SInt16 transparent, const UInt8* pixels)
{
    if (!IsInside(*clip, start, count))
        return;
    const auto [row, column] = Locate(*state, start);
    StoreMaskRow(row, column, count, transparent, pixels);
}

void SetPixMapRowValues(PixelWriteState* state, const Rect* clip, Point start, SInt16 count,
                        const SInt32* values)
{
    if (!IsInside(*clip, start, count))
        return;
    const auto [row, column] = Locate(*state, start);
    const auto* const bytes = reinterpret_cast<const UInt8*>(values);
    const auto value = [=](SInt32 i) { return Load32(bytes + ptrdiff_t{i} * 4); };
    switch (state->depth) {
    case 1:
        StorePackedRow<1>(row, column, count, value);
        break;
    case 2:
        StorePackedRow<2>(row, column, count, value);
        break;
    case 4:
        StorePackedRow<4>(row, column, count, value);
        break;
    case 8:
        for (SInt32 i = 0; i < count; ++i)
            row[column + i] = bytes[ptrdiff_t{i} * 4 + 3];
        break;
    case 16:
        for (SInt32 i = 0; i < count; ++i)
            Store16(row + ptrdiff_t{column + i} * 2, value(i));
        break;
    case 32:
        CopyBytes(row + ptrdiff_t{column} * 4, bytes, count * 4);
        break;
    default:
        break;
    }
}

void SetPixMapRowIndices(PixelWriteState* state, const Rect* clip, Point start, SInt16 count,
                         const UInt8* packed)
{
    if (!IsInside(*clip, start, count))
        return;
    const auto [row, column] = Locate(*state, start);
    switch (state->depth) {
    case 1:
        CopyBytes(row + (column >> 3), packed, (count + 7) / 8);
        break;
    case 2:
        CopyBytes(row + (column >> 2), packed, (count + 3) / 4);
        break;
    case 4:
        CopyBytes(row + (column >> 1), packed, (count + 1) / 2);
        break;
    case 8:
        CopyBytes(row + column, packed, count);
        break;
    default:
        break;
    }
}

void SetPixMapByteIndex(PixelWriteState* state, const Rect* clip, Point place, UInt8 byte)
{
    // The clip's right coordinate itself passes, here only: callers count on it.
    if (!IsRowInside(*clip, place.v) || place.h < clip->left || place.h > clip->right)
        return;
    const auto [row, column] = Locate(*state, place);
    switch (state->depth) {
    case 1:
        row[column >> 3] = byte;
        break;
    case 2:
        row[column >> 2] = byte;
        break;
    case 4:
        row[column >> 1] = byte;
        break;
    case 8:
        row[column] = byte;
        break;
    default:
        break;
    }
}

SInt32 GetPixMapPixel(PixelWriteState* state, Point place)
{
    const auto [row, column] = Locate(*state, place);
    switch (state->depth) {
    case 1: // Bits counted from the lowest, against the order of writing: callers count on it.
        return row[column >> 3] >> (column & 7) & 1;
    case 8:
        return static_cast<SInt8>(row[column]);
    case 16:
        return static_cast<SInt32>(Load16(row + ptrdiff_t{column} * 2));
    case 32:
        return static_cast<SInt32>(Load32(row + ptrdiff_t{column} * 4));
    default:
        return 0;
    }
}

UInt32 RGBToDirectPixel(const RGBColor* color, SInt16 depth)
{
    constexpr UInt16 kBrightestBlack = 0x7FFE;
    const UInt32 red = color->red;
    const UInt32 green = color->green;
    const UInt32 blue = color->blue;
    switch (depth) {
    case 1:
        return red <= kBrightestBlack ? 1 : 0;
    case 2:
    case 4:
    case 8:
        return static_cast<UInt32>(Color2Index(color));
    case 16:
        return ((red & 0xF800) | (green >> 5 & 0x07C0) | (blue >> 10 & 0x003E)) >> 1;
    case 32:
        return (red << 8 & 0x00FF0000) | (green & 0xFF00) | blue >> 8;
    default:
        return 0;
    }
}

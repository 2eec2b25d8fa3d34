// SPDX-License-Identifier: MIT
//
// Pixels of 1, 2 and 4 bits in the bytes of a row, the first one of a byte in its highest bits.
// Values wider than a pixel spill into the higher bits of its byte: callers count on it.
#pragma once

#include "toolbox/Types.h"

template <int kDepth>
struct PackedLayout {
    static_assert(kDepth == 1 || kDepth == 2 || kDepth == 4);
    static constexpr int kPerByte = 8 / kDepth;
    static constexpr int kByteShift = kDepth == 1 ? 3 : kDepth == 2 ? 2 : 1;
    static constexpr UInt32 kField = (1U << kDepth) - 1;
};

// At depth 1 any value but 0 is a set bit, which never spills.
template <int kDepth>
inline UInt32 PackedBits(UInt32 value)
{
    return kDepth == 1 ? UInt32{value != 0} : value;
}

// Stores the pixel in column x, which may be negative: its own bits are replaced, those it spills
// into are added to.
template <int kDepth>
inline void StorePacked(UInt8* row, SInt32 x, UInt32 value)
{
    using Layout = PackedLayout<kDepth>;
    const int last = Layout::kPerByte - 1;
    const int shift = (last - (x & last)) * kDepth;
    UInt8& byte = row[x >> Layout::kByteShift];
    byte = static_cast<UInt8>((byte & ~(Layout::kField << shift)) | PackedBits<kDepth>(value)
                                                                        << shift);
}

// What storing all pixels of a byte in order makes of it.
template <int kDepth, class Value>
inline UInt8 PackedByte(SInt32 first, Value value)
{
    UInt32 byte = 0;
    for (int i = 0; i < PackedLayout<kDepth>::kPerByte; ++i)
        byte = byte << kDepth | PackedBits<kDepth>(value(first + i));
    return static_cast<UInt8>(byte);
}

// Stores `count` pixels from column x on, value(0) first; whole bytes where there are any.
template <int kDepth, class Value>
inline void StorePackedRow(UInt8* row, SInt32 x, SInt32 count, Value value)
{
    using Layout = PackedLayout<kDepth>;
    SInt32 i = 0;
    for (; i < count && ((x + i) & (Layout::kPerByte - 1)) != 0; ++i)
        StorePacked<kDepth>(row, x + i, value(i));
    UInt8* const bytes = row + ((x + i) >> Layout::kByteShift);
    const SInt32 first = i;
    const SInt32 byteCount = (count - first) / Layout::kPerByte;
    for (SInt32 k = 0; k < byteCount; ++k)
        bytes[k] = PackedByte<kDepth>(first + k * Layout::kPerByte, value);
    for (i += byteCount * Layout::kPerByte; i < count; ++i)
        StorePacked<kDepth>(row, x + i, value(i));
}

// Rows of one byte a pixel.
void StoreBitRow(UInt8* row, SInt32 x, SInt32 count, const UInt8* pixels);
void StorePairRow(UInt8* row, SInt32 x, SInt32 count, const UInt8* pixels);
void StoreNibbleRow(UInt8* row, SInt32 x, SInt32 count, const UInt8* pixels);
// Clears the bits of pixels that equal `transparent` and sets the others'.
void StoreMaskRow(UInt8* row, SInt32 x, SInt32 count, SInt32 transparent, const UInt8* pixels);

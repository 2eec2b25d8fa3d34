// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/RowCopy.h"

#include <cstring>

namespace toolbox
{
namespace
{

UInt8 Merged(UInt8 under, UInt8 over, int overBits)
{
    return static_cast<UInt8>((under & ~overBits) | (over & overBits));
}

// Both start at the same bit of a byte.
void CopyAlignedBits(const UInt8* from, UInt8* to, int firstBit, int bitCount)
{
    const int endBit = firstBit + bitCount;
    const int startBits = 0xFF >> firstBit;
    if (endBit <= 8) {
        *to = Merged(*to, *from, startBits & ~(0xFF >> endBit));
        return;
    }
    const auto wholeEnd = static_cast<size_t>(endBit / 8);
    const UInt8 first = Merged(*to, *from, startBits);
    // Before the bytes between, which may overlap with it.
    const int endBits = endBit % 8;
    const UInt8 last = endBits == 0 ? UInt8{0} : from[wholeEnd];
    std::memmove(to + 1, from + 1, wholeEnd - 1);
    *to = first;
    if (endBits != 0) {
        to[wholeEnd] = Merged(to[wholeEnd], last, ~(0xFF >> endBits));
    }
}

// Eight bits from any bit on; `isAtEnd` if no bits of the next byte are wanted.
UInt8 BitsFrom(const UInt8* row, int bit, int count)
{
    const UInt8* const byte = row + bit / 8;
    const int shift = bit % 8;
    UInt32 bits = static_cast<UInt32>(*byte) << shift;
    if (shift + count > 8) {
        bits |= static_cast<UInt32>(byte[1]) >> (8 - shift);
    }
    return static_cast<UInt8>(bits);
}

void CopyShiftedBits(const UInt8* from, int fromBit, UInt8* to, int toBit, int bitCount)
{
    while (bitCount > 0) {
        const int inByte = toBit % 8;
        const int count = bitCount < 8 - inByte ? bitCount : 8 - inByte;
        const int bits = BitsFrom(from, fromBit, count) >> inByte;
        const int mask = (0xFF >> inByte) & ~(0xFF >> (inByte + count));
        UInt8& byte = to[toBit / 8];
        byte = Merged(byte, static_cast<UInt8>(bits), mask);
        fromBit += count;
        toBit += count;
        bitCount -= count;
    }
}

} // namespace

bool MayOverlap(int depth, int fromColumn, int toColumn)
{
    return (fromColumn - toColumn) * depth % 8 == 0;
}

void CopyRow(const UInt8* from, int fromColumn, UInt8* to, int toColumn, int depth, int count)
{
    if (depth >= 8) {
        const ptrdiff_t bytes = depth / 8;
        std::memmove(to + toColumn * bytes, from + fromColumn * bytes,
                     static_cast<size_t>(count * bytes));
        return;
    }
    const int fromBit = fromColumn * depth;
    const int toBit = toColumn * depth;
    if (fromBit % 8 == toBit % 8) {
        CopyAlignedBits(from + fromBit / 8, to + toBit / 8, toBit % 8, count * depth);
    } else {
        CopyShiftedBits(from, fromBit, to, toBit, count * depth);
    }
}

} // namespace toolbox

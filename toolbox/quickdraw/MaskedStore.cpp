// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/MaskedStore.h"

#include "toolbox/CpuVersions.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace toolbox
{
namespace
{

constexpr Color kWhite = 0xFFFFFF;

// The bits of 8 pixels, the first one highest; those from `count` on are clear.
inline UInt32 EightBits(const UInt8* mask, int column, int count)
{
    const UInt8* const byte = mask + column / 8;
    const int shift = column % 8;
    UInt32 bits = static_cast<UInt32>(*byte) << shift;
    if (shift + count > 8) {
        bits |= static_cast<UInt32>(byte[1]) >> (8 - shift);
    }
    return bits & 0xFF & ~(0xFFU >> std::min(count, 8));
}

// Eight pixels at once, whatever a pixel is; every lane looks at its own bit.
template <typename Pixel>
inline void SelectEight(const UInt8* from, UInt8* to, UInt32 bits)
{
    typedef Pixel Eight
        __attribute__((vector_size(8 * sizeof(Pixel)))); // NOLINT(modernize-use-using)
    constexpr Eight kLaneBits = {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01};
    Eight source;
    Eight target;
    std::memcpy(&source, from, sizeof source);
    std::memcpy(&target, to, sizeof target);
    const Eight selected =
        reinterpret_cast<Eight>((kLaneBits & static_cast<Pixel>(bits)) == kLaneBits);
    target = (source & selected) | (target & ~selected);
    std::memcpy(to, &target, sizeof target);
}

template <typename Pixel>
inline void SelectFew(const UInt8* from, UInt8* to, UInt32 bits)
{
    for (int i = 0; bits != 0; ++i, bits = bits << 1 & 0xFF) {
        if ((bits & 0x80) != 0) {
            std::memcpy(to + i * ptrdiff_t{sizeof(Pixel)}, from + i * ptrdiff_t{sizeof(Pixel)},
                        sizeof(Pixel));
        }
    }
}

template <typename Pixel>
inline void CopyMasked(const UInt8* from, UInt8* to, int count, const UInt8* mask, int maskColumn)
{
    constexpr ptrdiff_t kStep = 8 * sizeof(Pixel);
    for (; count >= 8; count -= 8, maskColumn += 8, from += kStep, to += kStep) {
        const UInt32 bits = EightBits(mask, maskColumn, 8);
        if (bits == 0xFF) {
            std::memcpy(to, from, kStep);
        } else if (bits != 0) {
            SelectEight<Pixel>(from, to, bits);
        }
    }
    if (count > 0) {
        SelectFew<Pixel>(from, to, EightBits(mask, maskColumn, count));
    }
}

// Eight bytes of a mask.
inline bool IsClear(const UInt8* mask)
{
    UInt64 word;
    std::memcpy(&word, mask, sizeof word);
    return word == 0;
}

VORN_CPU_VERSIONS void CopyMasked32(const UInt8* from, UInt8* to, int count, const UInt8* mask,
                                    int maskColumn)
{
    CopyMasked<UInt32>(from, to, count, mask, maskColumn);
}

VORN_CPU_VERSIONS void CopyMasked16(const UInt8* from, UInt8* to, int count, const UInt8* mask,
                                    int maskColumn)
{
    CopyMasked<UInt16>(from, to, count, mask, maskColumn);
}

VORN_CPU_VERSIONS void CopyMasked8(const UInt8* from, UInt8* to, int count, const UInt8* mask,
                                   int maskColumn)
{
    CopyMasked<UInt8>(from, to, count, mask, maskColumn);
}

} // namespace

void CopyMaskedPixels(const UInt8* from, UInt8* to, int depth, int count, const UInt8* mask,
                      int maskColumn)
{
    (depth == 32   ? CopyMasked32
     : depth == 16 ? CopyMasked16
                   : CopyMasked8)(from, to, count, mask, maskColumn);
}

void CopyMaskedRow(const UInt8* from, UInt8* to, int depth, int column, int count,
                   const UInt8* mask, int maskColumn)
{
    if (depth >= 8) {
        const ptrdiff_t offset = ptrdiff_t{column} * (depth / 8);
        CopyMaskedPixels(from + offset, to + offset, depth, count, mask, maskColumn);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const int maskBit = maskColumn + i;
        if ((mask[maskBit / 8] << (maskBit % 8) & 0x80) != 0) {
            const int bit = (column + i) * depth;
            const int field = ((1 << depth) - 1) << (8 - depth - bit % 8);
            to[bit / 8] = static_cast<UInt8>((to[bit / 8] & ~field) | (from[bit / 8] & field));
        }
    }
}

MaskPart PartWithSetBits(const UInt8* mask, int column, int count)
{
    constexpr ptrdiff_t kWord = sizeof(UInt64);
    const UInt8* first = mask + column / 8;
    const UInt8* end = mask + (column + count + 7) / 8;
    for (; end - first >= kWord && IsClear(first); first += kWord) {
    }
    for (; first < end && *first == 0; ++first) {
    }
    for (; end - first >= kWord && IsClear(end - kWord); end -= kWord) {
    }
    for (; first < end && end[-1] == 0; --end) {
    }
    const int from = std::max(column, static_cast<int>(first - mask) * 8);
    return {from, std::max(0, std::min(column + count, static_cast<int>(end - mask) * 8) - from)};
}

void MaskOfNonWhite(const Color* deepMask, int count, UInt8* mask)
{
    for (int i = 0; i < count; i += 8) {
        UInt32 bits = 0;
        for (int pixel = i; pixel < std::min(count, i + 8); ++pixel) {
            bits |= (deepMask[pixel] == kWhite ? 0U : 0x80U) >> (pixel - i);
        }
        mask[i / 8] = static_cast<UInt8>(bits);
    }
}

} // namespace toolbox

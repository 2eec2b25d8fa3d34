// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PixelSpans.h"

#include "toolbox/CpuVersions.h"
#include "toolbox/quickdraw/Dither.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace toolbox
{
namespace
{

// Words stand in memory with their high byte first.
inline UInt16 BigEndian(UInt16 word)
{
    return std::endian::native == std::endian::big ? word : __builtin_bswap16(word);
}

inline UInt32 BigEndian(UInt32 word)
{
    return std::endian::native == std::endian::big ? word : __builtin_bswap32(word);
}

template <typename Word>
inline Word Load(const UInt8* from)
{
    Word word;
    std::memcpy(&word, from, sizeof word);
    return BigEndian(word);
}

template <typename Word>
inline void Store(UInt8* to, Word word)
{
    word = BigEndian(word);
    std::memcpy(to, &word, sizeof word);
}

inline Color ColorFrom555(UInt32 pixel)
{
    const UInt32 high = (pixel & 0x7C00) << 9 | (pixel & 0x03E0) << 6 | (pixel & 0x001F) << 3;
    return high | (high >> 5 & 0x070707);
}

inline UInt16 Truncated555(Color color)
{
    return static_cast<UInt16>((color >> 16 & 0x8000) | (color >> 9 & 0x7C00) |
                               (color >> 6 & 0x03E0) | (color >> 3 & 0x001F));
}

using Words = UInt16 __attribute__((vector_size(32)));
constexpr ptrdiff_t kWords = sizeof(Words) / sizeof(UInt16);

// Sixteen pixels in lanes of 16 bits, as a little-endian machine loads them: the low byte is
// 0RRRRRGG, the high one GGGBBBBB. A component's upper bits are its lower ones once more.
inline void WidenWords(const UInt8* from, UInt8* to)
{
    Words pixels;
    std::memcpy(&pixels, from, sizeof pixels);
    const Words onlyRed = pixels & 0x007C;
    const Words red = (onlyRed << 9 | onlyRed << 4) & 0xFF00;
    const Words blueAndGreen = (pixels & 0x1F00) | ((pixels << 3 | pixels >> 13) & 0x001F);
    const Words greenAndBlue = blueAndGreen << 3 | (blueAndGreen >> 2 & 0x0707);
#if __has_builtin(__builtin_shufflevector)
    const Words first = __builtin_shufflevector(red, greenAndBlue, 0, 16, 1, 17, 2, 18, 3, 19, 4,
                                                20, 5, 21, 6, 22, 7, 23);
    const Words second = __builtin_shufflevector(red, greenAndBlue, 8, 24, 9, 25, 10, 26, 11, 27,
                                                 12, 28, 13, 29, 14, 30, 15, 31);
#else // GCC before 12
    constexpr Words kFirstHalf = {0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23};
    const Words first = __builtin_shuffle(red, greenAndBlue, kFirstHalf);
    const Words second = __builtin_shuffle(red, greenAndBlue, kFirstHalf + 8);
#endif
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + sizeof first, &second, sizeof second);
}

VORN_CPU_VERSIONS void Fetch32(const UInt8* from, int count, Color* colors)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        colors[i] = Load<UInt32>(from + 4 * i) & 0xFFFFFF;
    }
}

VORN_CPU_VERSIONS void Fetch16(const UInt8* from, int count, Color* colors)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        colors[i] = ColorFrom555(Load<UInt16>(from + 2 * i));
    }
}

VORN_CPU_VERSIONS void FetchWhole32(const UInt8* from, int count, Color* colors)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        colors[i] = Load<UInt32>(from + 4 * i);
    }
}

VORN_CPU_VERSIONS void FetchWhole16(const UInt8* from, int count, Color* colors)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        const UInt32 pixel = Load<UInt16>(from + 2 * i);
        colors[i] = ColorFrom555(pixel) | (pixel & 0x8000) << 16;
    }
}

VORN_CPU_VERSIONS void Store32(UInt8* to, int count, const Color* colors)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        Store<UInt32>(to + 4 * i, colors[i]);
    }
}

VORN_CPU_VERSIONS void Store16(UInt8* to, int count, const Color* colors)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        Store<UInt16>(to + 2 * i, Truncated555(colors[i]));
    }
}

VORN_CPU_VERSIONS void StoreDithered16(UInt8* to, int count, const Color* colors,
                                       const UInt16* biases)
{
    ptrdiff_t i = 0;
    for (; i + kDitherSize <= count; i += kDitherSize) {
        std::array<UInt16, kDitherSize> pixels;
        for (size_t cell = 0; cell < kDitherSize; ++cell) {
            pixels[cell] =
                BigEndian(Dithered555(colors[i + static_cast<ptrdiff_t>(cell)], biases[cell]));
        }
        std::memcpy(to + 2 * i, pixels.data(), sizeof pixels);
    }
    for (ptrdiff_t cell = 0; i < count; ++i, ++cell) {
        Store<UInt16>(to + 2 * i, Dithered555(colors[i], biases[cell]));
    }
}

// Compilers leave the loop as it is, and with it a third of the speed, unless there is one in it.
void FetchBytes(const UInt8* from, int count, const Color* palette, Color* colors)
{
    constexpr ptrdiff_t kAtOnce = 8;
    ptrdiff_t i = 0;
    for (; i + kAtOnce <= count; i += kAtOnce) {
        for (ptrdiff_t k = i; k < i + kAtOnce; ++k) {
            colors[k] = palette[from[k]];
        }
    }
    for (; i < count; ++i) {
        colors[i] = palette[from[i]];
    }
}

void FetchIndices(const UInt8* row, int depth, int column, int count, const Color* palette,
                  Color* colors)
{
    if (depth == 8) {
        FetchBytes(row + column, count, palette, colors);
        return;
    }
    const int mask = (1 << depth) - 1;
    for (int i = 0; i < count; ++i) {
        const int bit = (column + i) * depth;
        colors[i] = palette[row[bit / 8] >> (8 - depth - bit % 8) & mask];
    }
}

} // namespace

void FetchSpan(const UInt8* row, int depth, int column, int count, const Palette* palette,
               Color* colors)
{
    if (depth == 32) {
        Fetch32(row + ptrdiff_t{column} * 4, count, colors);
    } else if (depth == 16) {
        Fetch16(row + ptrdiff_t{column} * 2, count, colors);
    } else {
        FetchIndices(row, depth, column, count, palette->colors.data(), colors);
    }
}

void FetchWholeSpan(const UInt8* row, int depth, int column, int count, Color* colors)
{
    if (depth == 32) {
        FetchWhole32(row + ptrdiff_t{column} * 4, count, colors);
    } else {
        FetchWhole16(row + ptrdiff_t{column} * 2, count, colors);
    }
}

void StoreIndices(UInt8* row, int depth, int column, int count, const UInt8* values)
{
    if (depth == 8) {
        std::memcpy(row + column, values, static_cast<size_t>(count));
        return;
    }
    const int mask = (1 << depth) - 1;
    for (int i = 0; i < count; ++i) {
        const int bit = (column + i) * depth;
        const int shift = 8 - depth - bit % 8;
        UInt8& byte = row[bit / 8];
        byte = static_cast<UInt8>((byte & ~(mask << shift)) | values[i] << shift);
    }
}

void StoreSpan(UInt8* row, int depth, int column, int count, const Color* colors,
               ColorSearch* search)
{
    if (depth == 32) {
        Store32(row + ptrdiff_t{column} * 4, count, colors);
    } else if (depth == 16) {
        Store16(row + ptrdiff_t{column} * 2, count, colors);
    } else {
        std::array<UInt8, kSpan> values;
        for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
            values[i] = search->Nearest(colors[i]);
        }
        StoreIndices(row, depth, column, count, values.data());
    }
}

void StoreDitheredSpan(UInt8* row, int depth, int column, int count, const Color* colors,
                       ColorSearch* search, int v, int h)
{
    if (depth == 16) {
        StoreDithered16(row + ptrdiff_t{column} * 2, count, colors,
                        DitherBiases(v).data() + (h & (kDitherSize - 1)));
        return;
    }
    std::array<UInt8, kSpan> values;
    for (int i = 0; i < count; ++i) {
        values[static_cast<size_t>(i)] = DitheredIndex(colors[i], *search, v, h + i);
    }
    StoreIndices(row, depth, column, count, values.data());
}

void FillSpan(UInt8* row, int depth, int column, int count, UInt32 pixel)
{
    if (depth >= 16) {
        for (ptrdiff_t i = column; i < ptrdiff_t{column} + count; ++i) {
            if (depth == 32) {
                Store<UInt32>(row + 4 * i, pixel);
            } else {
                Store<UInt16>(row + 2 * i, static_cast<UInt16>(pixel));
            }
        }
        return;
    }
    std::array<UInt8, kSpan> values;
    values.fill(static_cast<UInt8>(pixel));
    for (int done = 0; done < count; done += kSpan) {
        StoreIndices(row, depth, column + done, std::min(kSpan, count - done), values.data());
    }
}

VORN_CPU_VERSIONS void Widen16To32(const UInt8* from, UInt8* to, int count)
{
    ptrdiff_t i = 0;
    if constexpr (std::endian::native == std::endian::little) {
        for (; i + kWords <= count; i += kWords) {
            WidenWords(from + 2 * i, to + 4 * i);
        }
    }
    for (; i < count; ++i) {
        Store<UInt32>(to + 4 * i, ColorFrom555(Load<UInt16>(from + 2 * i)));
    }
}

} // namespace toolbox

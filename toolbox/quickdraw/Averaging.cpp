// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Averaging.h"

#include "toolbox/CpuVersions.h"

#include <algorithm>
#include <cstring>

namespace toolbox
{
namespace
{

using Words = UInt16 __attribute__((vector_size(32))); // of four columns
using Columns = UInt64 __attribute__((vector_size(32)));
using Bytes = UInt8 __attribute__((vector_size(16)));

constexpr int kGroup = 4; // columns or pixels
constexpr ptrdiff_t kGroupWords = ptrdiff_t{4} * kGroup;
constexpr UInt32 kAll = 1 << 16; // what weights are together

// Compilers know this for one instruction, in loops over arrays only.
inline UInt16 Weighed(UInt16 sum, UInt16 weight)
{
    return static_cast<UInt16>(UInt32{sum} * UInt32{weight} >> 16);
}

template <int kRows, bool kAdds>
[[gnu::always_inline]] inline void SumRows(const UInt8* row, ptrdiff_t rowBytes, UInt16 weight,
                                           ptrdiff_t count, UInt16* sums)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        UInt16 sum = 0;
        for (ptrdiff_t k = 0; k < kRows; ++k) {
            sum = static_cast<UInt16>(sum + row[i + k * rowBytes]);
        }
        const UInt16 share = Weighed(static_cast<UInt16>(sum * (256 / kRows)), weight);
        sums[i] = static_cast<UInt16>((kAdds ? sums[i] : 0) + share);
    }
}

template <bool kAdds>
[[gnu::always_inline]] inline void SumRows(const UInt8* row, ptrdiff_t rowBytes, int rowCount,
                                           UInt16 weight, int count, UInt16* sums)
{
    const ptrdiff_t bytes = ptrdiff_t{4} * count;
    switch (rowCount) {
    case 1:
        return SumRows<1, kAdds>(row, rowBytes, weight, bytes, sums);
    case 2:
        return SumRows<2, kAdds>(row, rowBytes, weight, bytes, sums);
    case 4:
        return SumRows<4, kAdds>(row, rowBytes, weight, bytes, sums);
    default:
        return SumRows<kMostRowsAtOnce, kAdds>(row, rowBytes, weight, bytes, sums);
    }
}

template <int... kPlaces>
inline Words Picked(Words a, Words b)
{
    const auto left = reinterpret_cast<Columns>(a);
    const auto right = reinterpret_cast<Columns>(b);
#if __has_builtin(__builtin_shufflevector)
    return reinterpret_cast<Words>(__builtin_shufflevector(left, right, kPlaces...));
#else // GCC before 12
    return reinterpret_cast<Words>(__builtin_shuffle(left, right, Columns{kPlaces...}));
#endif
}

// From the four columns of each of four pixels to the four pixels.
inline Words AddColumns(Words a, Words b, Words c, Words d)
{
    const Words ab = Picked<0, 4, 2, 6>(a, b) + Picked<1, 5, 3, 7>(a, b);
    const Words cd = Picked<0, 4, 2, 6>(c, d) + Picked<1, 5, 3, 7>(c, d);
    return Picked<0, 1, 4, 5>(ab, cd) + Picked<2, 3, 6, 7>(ab, cd);
}

// Half a byte's step, and half a sum's for each column, which is what weighing cut off.
UInt16 Rounding(int groups)
{
    return static_cast<UInt16>(128 + kGroup / 2 * groups);
}

// Four pixels at once.
template <int kGroups>
[[gnu::always_inline]] inline void AverageFour(const UInt16* sums, const int* firsts,
                                               const UInt16* weights, int groups, UInt8* averages)
{
    Words pixels[kGroup] = {};
    for (int group = 0; group < (kGroups == 0 ? groups : kGroups); ++group) {
        UInt16 shares[kGroup * kGroupWords];
        for (int k = 0; k < kGroup; ++k) {
            Words words;
            std::memcpy(&words, sums + ptrdiff_t{4} * firsts[k] + kGroupWords * group,
                        sizeof words);
            std::memcpy(shares + kGroupWords * k, &words, sizeof words);
        }
        for (int i = 0; i < kGroup * kGroupWords; ++i) {
            shares[i] = Weighed(shares[i], weights[i]);
        }
        weights += kGroup * kGroupWords;
        for (int k = 0; k < kGroup; ++k) {
            Words words;
            std::memcpy(&words, shares + kGroupWords * k, sizeof words);
            pixels[k] += words;
        }
    }
    const Words all = AddColumns(pixels[0], pixels[1], pixels[2], pixels[3]);
    const Bytes bytes = __builtin_convertvector((all + Rounding(groups)) >> 8, Bytes);
    std::memcpy(averages, &bytes, sizeof bytes);
}

template <int kGroups>
[[gnu::always_inline]] inline void AverageAll(const UInt16* sums, const ColumnWeights& weights,
                                              int count, UInt8* averages)
{
    const int groups = weights.groups;
    const UInt16* fourWeights = weights.weights.data();
    const int* const firsts = weights.firsts.data();
    int i = 0;
    for (; i + kGroup <= count; i += kGroup) {
        AverageFour<kGroups>(sums, firsts + i, fourWeights, groups, averages + ptrdiff_t{4} * i);
        fourWeights += kGroup * kGroupWords * groups;
    }
    if (i < count) {
        UInt8 lastFour[sizeof(Bytes)];
        AverageFour<kGroups>(sums, firsts + i, fourWeights, groups, lastFour);
        std::memcpy(averages + ptrdiff_t{4} * i, lastFour, static_cast<size_t>(count - i) * 4);
    }
}

// Two to the power of 32 over a weight.
inline UInt64 Reciprocal(int weight)
{
    return (UINT64_C(1) << 32) / static_cast<UInt64>(weight);
}

} // namespace

int EqualRows(const SourceRange& rows, int row)
{
    const auto isWhole = [&](int which) { return rows.WeightOf(which) == rows.whole; };
    const int end = isWhole(rows.last) ? rows.last + 1 : rows.last;
    int count = 1;
    while (2 * count <= kMostRowsAtOnce && isWhole(row) && row + 2 * count <= end) {
        count *= 2;
    }
    return count;
}

UInt32 WeightBefore(const SourceRange& range, int end)
{
    if (end <= range.first || end > range.last) {
        return end <= range.first ? 0 : kAll;
    }
    const int before = range.firstWeight + (end - range.first - 1) * range.whole;
    const auto weight = static_cast<UInt32>(range.Weight());
    return (static_cast<UInt32>(before) * kAll + weight / 2) / weight;
}

VORN_CPU_VERSIONS void SetSums(const UInt8* row, ptrdiff_t rowBytes, int rowCount, UInt16 weight,
                               int count, UInt16* sums)
{
    SumRows<false>(row, rowBytes, rowCount, weight, count, sums);
}

VORN_CPU_VERSIONS void AddToSums(const UInt8* row, ptrdiff_t rowBytes, int rowCount, UInt16 weight,
                                 int count, UInt16* sums)
{
    SumRows<true>(row, rowBytes, rowCount, weight, count, sums);
}

// The first four columns of four pixels, then their next four.
void SetColumnWeights(const SourceRange* columns, int count, int longest, ColumnWeights& weights)
{
    weights.groups = (longest + kGroup - 1) / kGroup;
    const size_t pixels = (static_cast<size_t>(count) + kGroup - 1) / kGroup * kGroup;
    weights.firsts.assign(pixels, 0);
    weights.weights.assign(pixels * static_cast<size_t>(weights.groups) * kGroupWords, 0);
    for (int i = 0; i < count; ++i) {
        const SourceRange& range = columns[i];
        weights.firsts[static_cast<size_t>(i)] = range.first;
        UInt32 before = 0;
        for (int k = 0; k <= range.last - range.first; ++k) {
            const int four = (i / kGroup * weights.groups + k / kGroup) * kGroup + i % kGroup;
            const UInt32 upTo = WeightBefore(range, range.first + k + 1);
            std::fill_n(weights.weights.begin() + four * kGroupWords + ptrdiff_t{4} * (k % kGroup),
                        4, WeightBetween(before, upTo));
            before = upTo;
        }
    }
}

VORN_CPU_VERSIONS void AverageSums(const UInt16* sums, const ColumnWeights& weights, int count,
                                   UInt8* averages)
{
    if (weights.groups == 1) {
        AverageAll<1>(sums, weights, count, averages);
    } else {
        AverageAll<0>(sums, weights, count, averages);
    }
}

VORN_CPU_VERSIONS void AddLongRow(const UInt8* row, int weight, int count, UInt32* longSums)
{
    for (ptrdiff_t i = 0; i < ptrdiff_t{4} * count; ++i) {
        longSums[i] += row[i] * static_cast<UInt32>(weight);
    }
}

VORN_CPU_VERSIONS void ShortenSums(const UInt32* longSums, int weight, int count, UInt16* sums)
{
    const UInt64 reciprocal = Reciprocal(weight);
    for (ptrdiff_t i = 0; i < ptrdiff_t{4} * count; ++i) {
        sums[i] = static_cast<UInt16>(longSums[i] * reciprocal >> 24);
    }
}

void AverageLongRanges(const UInt16* sums, const SourceRange* columns, int count, UInt8* averages)
{
    for (int i = 0; i < count; ++i) {
        UInt32 all[4] = {};
        for (int column = columns[i].first; column <= columns[i].last; ++column) {
            const auto weight = static_cast<UInt32>(columns[i].WeightOf(column));
            for (int k = 0; k < 4; ++k) {
                all[k] += sums[4 * column + k] * weight;
            }
        }
        const UInt64 reciprocal = Reciprocal(columns[i].Weight());
        for (const UInt32 sum : all) {
            *averages++ = static_cast<UInt8>((sum * reciprocal + (UINT64_C(1) << 39)) >> 40);
        }
    }
}

} // namespace toolbox

// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Scaling.h"

#include "toolbox/CpuVersions.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace toolbox
{
namespace
{

using FourFloats = float __attribute__((vector_size(16)));
using FourInts = SInt32 __attribute__((vector_size(16)));

inline FourFloats LoadFour(const float* from)
{
    FourFloats four;
    std::memcpy(&four, from, sizeof four);
    return four;
}

// The lowest bytes of four numbers, picked in one go: converting takes compilers a dozen steps.
inline Color LowestBytes(FourInts numbers)
{
    using Bytes = UInt8 __attribute__((vector_size(16)));
    constexpr int kLowest = std::endian::native == std::endian::little ? 0 : 3;
    const auto bytes = reinterpret_cast<Bytes>(numbers);
#if __has_builtin(__builtin_shufflevector)
    const Bytes picked = __builtin_shufflevector(
        bytes, bytes, kLowest, kLowest + 4, kLowest + 8, kLowest + 12, kLowest, kLowest, kLowest,
        kLowest, kLowest, kLowest, kLowest, kLowest, kLowest, kLowest, kLowest, kLowest);
#else // GCC before 12
    const Bytes picked =
        __builtin_shuffle(bytes, Bytes{kLowest, kLowest + 4, kLowest + 8, kLowest + 12});
#endif
    Color color;
    std::memcpy(&color, &picked, sizeof color);
    return color;
}

inline Color ColorFromFour(FourFloats components)
{
    return LowestBytes(__builtin_convertvector(components + 0.5F, FourInts));
}

SourceRange MakeRange(int first, int last, float firstWeight, float lastWeight)
{
    if (first == last) {
        return {first, last, 1, 0, 1};
    }
    const float between = static_cast<float>(last - first - 1);
    return {first, last, firstWeight, lastWeight, 1 / (firstWeight + between + lastWeight)};
}

// Eight at once, as compilers leave a plain loop as it is.
template <typename Pixel>
void Pick(const UInt8* from, const SourceRange* columns, int count, UInt8* to)
{
    constexpr int kAtOnce = 8;
    const auto pickOne = [&](ptrdiff_t i) {
        std::memcpy(to + i * ptrdiff_t{sizeof(Pixel)},
                    from + columns[i].first * ptrdiff_t{sizeof(Pixel)}, sizeof(Pixel));
    };
    ptrdiff_t i = 0;
    for (; i + kAtOnce <= count; i += kAtOnce) {
        for (int k = 0; k < kAtOnce; ++k) {
            pickOne(i + k);
        }
    }
    for (; i < count; ++i) {
        pickOne(i);
    }
}

} // namespace

SourceRange SourceRange::Within(int low, int high) const
{
    if (first >= low && last < high) {
        return *this;
    }
    const int start = std::max(first, low);
    const int end = std::min(last, high - 1);
    return MakeRange(start, end, WeightOf(start), WeightOf(end));
}

SourceRange Axis::RangeOf(int target) const
{
    const SInt64 place = SInt64{target} - to;
    if (!Averages()) {
        const int nearest =
            from + static_cast<int>((2 * place + 1) * fromSize / (SInt64{2} * toSize));
        return MakeRange(nearest, nearest, 1, 0);
    }
    const SInt64 start = place * fromSize;
    const SInt64 end = start + fromSize;
    const auto first = static_cast<int>(start / toSize);
    const auto last = static_cast<int>((end - 1) / toSize);
    const auto unit = static_cast<float>(toSize);
    const auto before = static_cast<float>(start - SInt64{first} * toSize);
    const auto inside = static_cast<float>(end - SInt64{last} * toSize);
    return MakeRange(from + first, from + last, 1 - before / unit, inside / unit);
}

VORN_CPU_VERSIONS void SetSums(const Color* row, float weight, const Color* nextRow,
                               float nextWeight, int count, float* sums)
{
    const auto* const components = reinterpret_cast<const UInt8*>(row);
    const auto* const nextComponents = reinterpret_cast<const UInt8*>(nextRow);
    for (ptrdiff_t i = 0; i < ptrdiff_t{4} * count; ++i) {
        sums[i] = weight * static_cast<float>(components[i]) +
                  nextWeight * static_cast<float>(nextComponents[i]);
    }
}

VORN_CPU_VERSIONS void AddToSums(const Color* row, float weight, const Color* nextRow,
                                 float nextWeight, int count, float* sums)
{
    const auto* const components = reinterpret_cast<const UInt8*>(row);
    const auto* const nextComponents = reinterpret_cast<const UInt8*>(nextRow);
    for (ptrdiff_t i = 0; i < ptrdiff_t{4} * count; ++i) {
        sums[i] += weight * static_cast<float>(components[i]) +
                   nextWeight * static_cast<float>(nextComponents[i]);
    }
}

VORN_CPU_VERSIONS void AverageSums(const float* sums, const SourceRange* columns, int count,
                                   float rowScale, Color* colors)
{
    for (int i = 0; i < count; ++i) {
        const SourceRange& range = columns[i];
        FourFloats sum = LoadFour(sums + ptrdiff_t{4} * range.first) * range.firstWeight;
        for (ptrdiff_t column = range.first + 1; column < range.last; ++column) {
            sum += LoadFour(sums + 4 * column);
        }
        sum += LoadFour(sums + ptrdiff_t{4} * range.last) * range.lastWeight;
        colors[i] = ColorFromFour(sum * (rowScale * range.scale));
    }
}

VORN_CPU_VERSIONS void AverageFours(const UInt8* row, const UInt8* nextRow, int count,
                                    UInt8* averages)
{
    for (ptrdiff_t i = 0; i < count; ++i, row += 8, nextRow += 8, averages += 4) {
        for (int k = 0; k < 4; ++k) {
            const int sum = row[k] + row[k + 4] + nextRow[k] + nextRow[k + 4];
            averages[k] = static_cast<UInt8>((sum + 2) / 4);
        }
    }
}

void PickPixels(const UInt8* from, const SourceRange* columns, int depth, int count, UInt8* to)
{
    switch (depth) {
    case 8:
        Pick<UInt8>(from, columns, count, to);
        break;
    case 16:
        Pick<UInt16>(from, columns, count, to);
        break;
    default:
        Pick<UInt32>(from, columns, count, to);
        break;
    }
}

void PickColors(const Color* from, const SourceRange* columns, int count, Color* colors)
{
    Pick<Color>(reinterpret_cast<const UInt8*>(from), columns, count,
                reinterpret_cast<UInt8*>(colors));
}

} // namespace toolbox

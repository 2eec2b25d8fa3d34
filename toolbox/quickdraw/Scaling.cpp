// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Scaling.h"

#include "toolbox/CpuVersions.h"

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

inline Color ColorFromFour(FourFloats components)
{
    const FourInts rounded = __builtin_convertvector(components + 0.5F, FourInts);
    Color color = 0;
    auto* const bytes = reinterpret_cast<UInt8*>(&color);
    for (size_t i = 0; i < 4; ++i) {
        bytes[i] = static_cast<UInt8>(rounded[i]);
    }
    return color;
}

} // namespace

SourceRange Axis::RangeOf(int target) const
{
    const SInt64 place = SInt64{target} - to;
    if (!Averages()) {
        const int nearest = from + static_cast<int>((2 * place + 1) * fromSize / (2 * toSize));
        return {nearest, nearest, 1, 0};
    }
    const SInt64 start = place * fromSize;
    const SInt64 end = start + fromSize;
    const auto first = static_cast<int>(start / toSize);
    const auto last = static_cast<int>((end - 1) / toSize);
    const auto unit = static_cast<float>(toSize);
    const auto before = static_cast<float>(start - SInt64{first} * toSize);
    const auto inside = static_cast<float>(end - SInt64{last} * toSize);
    return {from + first, from + last, 1 - before / unit, inside / unit};
}

VORN_CPU_VERSIONS void SetSums(const Color* colors, int count, float weight, float* sums)
{
    const auto* const components = reinterpret_cast<const UInt8*>(colors);
    for (ptrdiff_t i = 0; i < ptrdiff_t{4} * count; ++i) {
        sums[i] = weight * static_cast<float>(components[i]);
    }
}

VORN_CPU_VERSIONS void AddToSums(const Color* colors, int count, float weight, float* sums)
{
    const auto* const components = reinterpret_cast<const UInt8*>(colors);
    for (ptrdiff_t i = 0; i < ptrdiff_t{4} * count; ++i) {
        sums[i] += weight * static_cast<float>(components[i]);
    }
}

void AverageSums(const float* sums, const SourceRange* columns, int count, float scale,
                 Color* colors)
{
    for (int i = 0; i < count; ++i) {
        const SourceRange& range = columns[i];
        FourFloats sum = LoadFour(sums + ptrdiff_t{4} * range.first) * range.firstWeight;
        for (ptrdiff_t column = range.first + 1; column < range.last; ++column) {
            sum += LoadFour(sums + 4 * column);
        }
        if (range.last > range.first) {
            sum += LoadFour(sums + ptrdiff_t{4} * range.last) * range.lastWeight;
        }
        colors[i] = ColorFromFour(sum * (scale / range.Total()));
    }
}

void PickColors(const Color* from, const SourceRange* columns, int count, Color* colors)
{
    for (int i = 0; i < count; ++i) {
        colors[i] = from[columns[i].first];
    }
}

} // namespace toolbox

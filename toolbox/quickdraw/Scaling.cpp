// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Scaling.h"

#include <algorithm>
#include <cstring>

namespace toolbox
{
namespace
{

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

int SourceRange::Weight() const
{
    return first == last ? firstWeight : firstWeight + (last - first - 1) * whole + lastWeight;
}

SourceRange SourceRange::Within(int low, int high) const
{
    const int start = std::max(first, low);
    const int end = std::min(last, high - 1);
    return {start, end, WeightOf(start), start == end ? 0 : WeightOf(end), whole};
}

SourceRange Axis::RangeOf(int target) const
{
    // Sizes are less than 65536.
    const auto place = static_cast<UInt32>(target - to);
    const auto step = static_cast<UInt32>(fromSize);
    const auto whole = static_cast<UInt32>(toSize);
    if (!Averages()) {
        const int nearest =
            from + static_cast<int>((UInt64{2} * place + 1) * step / (UInt64{2} * whole));
        return {nearest, nearest, 1, 0, 1};
    }
    const UInt32 start = place * step;
    const UInt32 end = start + step;
    const UInt32 first = start / whole;
    const UInt32 last = (end - 1) / whole;
    return {from + static_cast<int>(first), from + static_cast<int>(last),
            static_cast<int>((first + 1) * whole - start), static_cast<int>(end - last * whole),
            toSize};
}

int Axis::LongestRange() const
{
    if (!Averages()) {
        return 1;
    }
    return fromSize / toSize + (fromSize % toSize == 0 ? 0 : 2);
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

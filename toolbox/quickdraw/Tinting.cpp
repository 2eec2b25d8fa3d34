// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Tinting.h"

#include "toolbox/CpuVersions.h"

namespace toolbox
{
namespace
{

// From a to b by weight/255, rounded.
inline UInt8 Between(UInt32 a, UInt32 b, UInt32 weight)
{
    const UInt32 sum = a * (255 - weight) + b * weight + 128;
    return static_cast<UInt8>((sum + (sum >> 8)) >> 8);
}

} // namespace

VORN_CPU_VERSIONS void TintColors(Color* colors, int count, const Tint& tint)
{
    const Color black = tint.black;
    const Color white = tint.white;
    for (ptrdiff_t i = 0; i < count; ++i) {
        const Color color = colors[i];
        const UInt32 red = Between(black >> 16, white >> 16, color >> 16);
        const UInt32 green = Between(black >> 8 & 0xFF, white >> 8 & 0xFF, color >> 8 & 0xFF);
        const UInt32 blue = Between(black & 0xFF, white & 0xFF, color & 0xFF);
        colors[i] = red << 16 | green << 8 | blue;
    }
}

VORN_CPU_VERSIONS void BlendColors(const Color* mask, const Color* target, int count, Color* colors)
{
    const auto* const weights = reinterpret_cast<const UInt8*>(mask);
    const auto* const under = reinterpret_cast<const UInt8*>(target);
    auto* const components = reinterpret_cast<UInt8*>(colors);
    for (ptrdiff_t i = 0; i < ptrdiff_t{4} * count; ++i) {
        components[i] = Between(components[i], under[i], weights[i]);
    }
}

} // namespace toolbox

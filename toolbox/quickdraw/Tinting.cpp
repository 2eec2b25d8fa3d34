// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Tinting.h"

#include "toolbox/CpuVersions.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace toolbox
{
namespace
{

constexpr Color kNotColor = 0xFF000000;

// From a to b by weight/255, rounded. All of it fits 16 bits, which makes for twice the speed.
inline UInt8 Between(UInt8 a, UInt8 b, UInt8 weight)
{
    const auto sum = static_cast<UInt16>(a * (255 - weight) + b * weight + 128);
    return static_cast<UInt8>(static_cast<UInt16>(sum + (sum >> 8)) >> 8);
}

using FourColors = Color __attribute__((vector_size(16)));
using Bytes = UInt8 __attribute__((vector_size(16)));
using Words = UInt16 __attribute__((vector_size(32)));
constexpr ptrdiff_t kFourColors = 4;

inline Bytes LoadBytes(const Color* from)
{
    Bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

// Between, sixteen times over.
inline void BlendFour(const Color* mask, const Color* under, Color* colors)
{
    const auto allWeights = reinterpret_cast<FourColors>(LoadBytes(mask)) | kNotColor;
    const Words weights = __builtin_convertvector(reinterpret_cast<Bytes>(allWeights), Words);
    const Words from = __builtin_convertvector(LoadBytes(colors), Words);
    const Words to = __builtin_convertvector(LoadBytes(under), Words);
    Words sums = from * (255 - weights) + to * weights + 128;
    sums = (sums + (sums >> 8)) >> 8;
    const Bytes blended = __builtin_convertvector(sums, Bytes);
    std::memcpy(colors, &blended, sizeof blended);
}

} // namespace

VORN_CPU_VERSIONS void TintColors(Color* colors, int count, const Tint& tint)
{
    const Color black = tint.black;
    const Color white = tint.white;
    const auto tinted = [&](Color color, int shift) {
        return static_cast<Color>(Between(static_cast<UInt8>(black >> shift),
                                          static_cast<UInt8>(white >> shift),
                                          static_cast<UInt8>(color >> shift)))
               << shift;
    };
    for (ptrdiff_t i = 0; i < count; ++i) {
        colors[i] = tinted(colors[i], 16) | tinted(colors[i], 8) | tinted(colors[i], 0);
    }
}

VORN_CPU_VERSIONS void BlendColors(const Color* mask, const Color* under, int count, Color* colors)
{
    ptrdiff_t i = 0;
    for (; i + kFourColors <= count; i += kFourColors) {
        BlendFour(mask + i, under + i, colors + i);
    }
    std::array<Color, kFourColors> lastMask{};
    std::array<Color, kFourColors> lastUnder{};
    std::array<Color, kFourColors> last{};
    const auto bytes = static_cast<size_t>(count - i) * sizeof(Color);
    std::memcpy(lastMask.data(), mask + i, bytes);
    std::memcpy(lastUnder.data(), under + i, bytes);
    std::memcpy(last.data(), colors + i, bytes);
    BlendFour(lastMask.data(), lastUnder.data(), last.data());
    std::memcpy(colors + i, last.data(), bytes);
}

VORN_CPU_VERSIONS void AddUnder(const Color* mask, const Color* under, int count, Color* colors)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        const auto component = [&](int shift) {
            const UInt32 added = Between(0, static_cast<UInt8>(under[i] >> shift),
                                         static_cast<UInt8>(mask[i] >> shift));
            return std::min<UInt32>((colors[i] >> shift & 0xFF) + added, 0xFF) << shift;
        };
        colors[i] = (under[i] & kNotColor) | component(16) | component(8) | component(0);
    }
}

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// What copying writes is the same on every machine, whatever its byte order, its widths and the
// way it calculates: sums of pixels that one machine drew, for all to draw again.
#include "CopyReference.h"

#include <gtest/gtest.h>

#include <array>

namespace
{

using reference::BitsOf;
using reference::MakeWorld;
using reference::OwnedWorld;

constexpr std::array<int, 6> kDepths = {1, 2, 4, 8, 16, 32};
constexpr Rect kArea = {-3, 5, 58, 82};
constexpr Rect kWider = {-20, -11, 90, 140};
constexpr Rect kNarrower = {4, 9, 30, 40};

using Sums = std::array<UInt32, kDepths.size()>; // one for each depth of the target

// FNV-1a, of the pixels' values.
UInt32 SumOf(const OwnedWorld& world)
{
    const BitMap* const bits = BitsOf(world);
    UInt32 sum = 2166136261U;
    for (int v = bits->bounds.top; v < bits->bounds.bottom; ++v) {
        for (int h = bits->bounds.left; h < bits->bounds.right; ++h) {
            const UInt32 value = reference::ValueAt(bits, v, h);
            for (int shift = 24; shift >= 0; shift -= 8) {
                sum = (sum ^ (value >> shift & 0xFF)) * 16777619U;
            }
        }
    }
    return sum;
}

Rect Shifted(Rect rect, SInt16 right)
{
    OffsetRect(&rect, right, 0);
    return rect;
}

// Worlds of noise, the same at every run: into each target goes one of each depth, each a little
// further right than the one before, so that something of all of them stays.
template <typename Copy>
Sums SumsOfCopies(Copy copy)
{
    Sums sums{};
    for (size_t i = 0; i < kDepths.size(); ++i) {
        std::mt19937 random(20030601);
        const OwnedWorld target = MakeWorld(kDepths[i], kArea);
        SetGWorld(target.get(), nullptr);
        FillWithNoise(target, random);
        SInt16 shift = 0;
        for (const int depth : kDepths) {
            const OwnedWorld source = MakeWorld(depth, kArea);
            FillWithNoise(source, random);
            copy(BitsOf(source), BitsOf(target), shift);
            shift = static_cast<SInt16>(shift + 7);
        }
        sums[i] = SumOf(target);
    }
    SetGWorld(nullptr, nullptr);
    return sums;
}

Sums SumsOfCopyBits(const Rect& from, const Rect& to, SInt16 mode)
{
    return SumsOfCopies([&](const BitMap* source, const BitMap* target, SInt16 shift) {
        const Rect place = Shifted(to, shift);
        CopyBits(source, target, &from, &place, mode, nullptr);
    });
}

TEST(SameBytes, AreCopied)
{
    EXPECT_EQ((Sums{0xF09245A5, 0xA160AA1F, 0xB951E3C2, 0xBD7BBE92, 0x98C73389, 0x3CE33474}),
              SumsOfCopyBits(kArea, kArea, srcCopy));
}

TEST(SameBytes, AreDithered)
{
    EXPECT_EQ((Sums{0xBCDEEA95, 0xEB65BEAC, 0xC38F46BD, 0xC5B3B5D4, 0x37BDC763, 0x3CE33474}),
              SumsOfCopyBits(kArea, kArea, ditherCopy));
}

TEST(SameBytes, AreEnlarged)
{
    EXPECT_EQ((Sums{0x9089FF25, 0x568B63C5, 0x28248DA6, 0xE1B2B4C6, 0x202C734E, 0x9893E00F}),
              SumsOfCopyBits(kNarrower, kArea, srcCopy));
}

TEST(SameBytes, AreAveraged)
{
    EXPECT_EQ((Sums{0x433AF685, 0x06042C22, 0x7FCCB2E0, 0xE6486910, 0x35DCFB5E, 0x189728B5}),
              SumsOfCopyBits(kArea, kNarrower, srcCopy));
}

TEST(SameBytes, AreAveragedAndClipped)
{
    EXPECT_EQ((Sums{0x4B9BA355, 0x6C477455, 0xBD330265, 0x0055E48F, 0x33FF24C8, 0xE0BF63E8}),
              SumsOfCopyBits(kWider, kArea, srcCopy));
}

TEST(SameBytes, AreMasked)
{
    std::mt19937 random(1);
    const OwnedWorld mask = MakeWorld(1, kArea);
    FillWithNoise(mask, random);
    EXPECT_EQ((Sums{0x3AE608D2, 0x8A570CC2, 0x9FD1E5FD, 0x6AC0F3BE, 0x48BDC42A, 0x3CD941FC}),
              SumsOfCopies([&](const BitMap* source, const BitMap* target, SInt16 shift) {
                  const Rect place = Shifted(kNarrower, shift);
                  CopyMask(source, BitsOf(mask), target, &kArea, &kArea, &place);
              }));
}

TEST(SameBytes, AreBlended)
{
    std::mt19937 random(1);
    const OwnedWorld mask = MakeWorld(32, kArea);
    FillWithNoise(mask, random);
    EXPECT_EQ((Sums{0xE9E1C9E5, 0xC5F310A5, 0xF1279AC6, 0xD24464CA, 0x1CE39AB6, 0x5BDFC838}),
              SumsOfCopies([&](const BitMap* source, const BitMap* target, SInt16 shift) {
                  const Rect place = Shifted(kArea, shift);
                  CopyDeepMask(source, BitsOf(mask), target, &kArea, &kArea, &place, srcCopy,
                               nullptr);
              }));
}

} // namespace

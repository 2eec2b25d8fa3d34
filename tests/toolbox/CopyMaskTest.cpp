// SPDX-License-Identifier: MIT
//
// CopyMask and CopyDeepMask, against a copy pixel by pixel.
#include "CopyReference.h"
#include "toolbox/memory/Memory.h"

#include <gtest/gtest.h>

namespace
{

using reference::BitsOf;
using reference::Blend;
using reference::ColorAt;
using reference::Components;
using reference::Contains;
using reference::DepthOf;
using reference::MakeWorld;
using reference::OwnedWorld;
using reference::ValueAt;

constexpr int kDepths[] = {1, 2, 4, 8, 16, 32};
constexpr Components kWhite = {255, 255, 255};
constexpr Components kBlack = {0, 0, 0};
constexpr UInt32 kColorsOf32 = 0xFFFFFF;

// What the target's pixel must hold. The unused byte of 32-bit pixels is not looked at, except
// where the mask is white: there nothing changes.
bool IsRight(const BitMap* target, UInt32 was, UInt32 is, const Components& source,
             const Components& mask)
{
    if (mask == kWhite) {
        return is == was;
    }
    const Components under = reference::ColorOfValue(target, was);
    const UInt32 expected = reference::NearestValue(target, Blend(source, under, mask));
    const UInt32 compared = DepthOf(target) == 32   ? kColorsOf32
                            : DepthOf(target) == 16 ? 0x7FFF
                                                    : UINT32_MAX;
    return (is & compared) == (expected & compared);
}

using Copy = void (*)(const BitMap*, const BitMap*, const BitMap*, const Rect*, const Rect*,
                      const Rect*);

void CopyThroughDeepMask(const BitMap* source, const BitMap* mask, const BitMap* target,
                         const Rect* from, const Rect* maskRect, const Rect* to)
{
    CopyDeepMask(source, mask, target, from, maskRect, to, srcCopy, nullptr);
}

void CheckRandomCopies(Copy copy, int sourceDepth, int maskDepth, int targetDepth)
{
    std::mt19937 random(static_cast<UInt32>(sourceDepth * 10000 + maskDepth * 100 + targetDepth));
    const OwnedWorld source = MakeWorld(sourceDepth, {-9, -20, 25, 51});
    const OwnedWorld mask = MakeWorld(maskDepth, {3, 5, 37, 80});
    const OwnedWorld target = MakeWorld(targetDepth, {-13, -7, 20, 70});
    reference::FillWithNoise(source, random);
    reference::FillWithNoise(mask, random);
    for (int round = 0; round < 10; ++round) {
        const auto any = [&](int low, int high) {
            return static_cast<SInt16>(std::uniform_int_distribution<int>(low, high)(random));
        };
        const SInt16 height = any(1, 30);
        const SInt16 width = any(1, 60);
        const auto at = [&](SInt16 top, SInt16 left) {
            return Rect{top, left, static_cast<SInt16>(top + height),
                        static_cast<SInt16>(left + width)};
        };
        const Rect from = at(any(-20, 20), any(-30, 40));
        const Rect maskRect = at(any(0, 30), any(0, 60));
        const Rect to = at(any(-20, 20), any(-20, 60));
        const OwnedWorld before = MakeWorld(targetDepth, BitsOf(target)->bounds);
        const Rect& bounds = BitsOf(target)->bounds;
        reference::FillWithNoise(target, random);
        CopyBits(BitsOf(target), BitsOf(before), &bounds, &bounds, srcCopy, nullptr);
        copy(BitsOf(source), BitsOf(mask), BitsOf(target), &from, &maskRect, &to);
        for (int v = bounds.top; v < bounds.bottom; ++v) {
            for (int h = bounds.left; h < bounds.right; ++h) {
                const int fromV = v - to.top + from.top;
                const int fromH = h - to.left + from.left;
                const int maskV = v - to.top + maskRect.top;
                const int maskH = h - to.left + maskRect.left;
                const bool isDrawn = Contains(to, v, h) &&
                                     Contains(BitsOf(source)->bounds, fromV, fromH) &&
                                     Contains(BitsOf(mask)->bounds, maskV, maskH);
                const UInt32 was = ValueAt(BitsOf(before), v, h);
                const UInt32 is = ValueAt(BitsOf(target), v, h);
                const Components color = isDrawn ? ColorAt(BitsOf(source), fromV, fromH) : kBlack;
                const Components weights = isDrawn ? ColorAt(BitsOf(mask), maskV, maskH) : kWhite;
                ASSERT_TRUE(IsRight(BitsOf(target), was, is, color, weights))
                    << sourceDepth << " through " << maskDepth << " to " << targetDepth
                    << " bits, round " << round << ", at " << v << ", " << h << ": " << was
                    << " became " << is;
            }
        }
    }
}

TEST(CopyMask, CopiesWhatIsBlackInABitMaskAtAllDepths)
{
    for (const int sourceDepth : kDepths) {
        for (const int targetDepth : kDepths) {
            CheckRandomCopies(CopyMask, sourceDepth, 1, targetDepth);
        }
    }
}

TEST(CopyDeepMask, BlendsByTheMasksGreysAtAllDepths)
{
    for (const int maskDepth : kDepths) {
        for (const int targetDepth : kDepths) {
            CheckRandomCopies(CopyThroughDeepMask, 32, maskDepth, targetDepth);
        }
    }
}

// Long enough for copies to be made in pieces.
TEST(CopyMask, CopiesWhatIsBlackBetweenLongWhiteEnds)
{
    constexpr SInt16 kWidth = 1100;
    constexpr Rect kRow = {0, 0, 1, kWidth};
    std::mt19937 random(1);
    const OwnedWorld source = MakeWorld(8, kRow);
    const OwnedWorld mask = MakeWorld(1, kRow);
    reference::FillWithNoise(source, random);
    for (int first = 0; first < kWidth; first += 37) {
        const int end = std::min<int>(kWidth, first + 1 + first % 3 * 80);
        const SInt16 shift = static_cast<SInt16>(first % 5);
        const OwnedWorld target = MakeWorld(16, kRow);
        for (int h = 0; h < kWidth; ++h) {
            reference::SetValueAt(BitsOf(mask), 0, h, h >= first && h < end ? 1 : 0);
            reference::SetValueAt(BitsOf(target), 0, h, 0x8000U + static_cast<UInt32>(h));
        }
        const Rect from = {0, shift, 1, kWidth};
        const Rect to = {0, 0, 1, static_cast<SInt16>(kWidth - shift)};
        CopyMask(BitsOf(source), BitsOf(mask), BitsOf(target), &from, &from, &to);
        for (int h = 0; h < to.right; ++h) {
            const bool isBlack = h + shift >= first && h + shift < end;
            const Components color = ColorAt(BitsOf(source), 0, h + shift);
            ASSERT_EQ(ValueAt(BitsOf(target), 0, h),
                      isBlack ? reference::NearestValue(BitsOf(target), color)
                              : 0x8000U + static_cast<UInt32>(h))
                << first << " to " << end << ", at " << h;
        }
    }
}

class Masked : public testing::Test
{
protected:
    static constexpr Rect kBounds = {0, 0, 8, 19};

    void Paint(const OwnedWorld& world, UInt32 value) const
    {
        for (int v = 0; v < kBounds.bottom; ++v) {
            for (int h = 0; h < kBounds.right; ++h) {
                reference::SetValueAt(BitsOf(world), v, h, value);
            }
        }
    }
    void CopyThrough(const OwnedWorld& mask) const
    {
        CopyDeepMask(BitsOf(source), BitsOf(mask), BitsOf(target), &kBounds, &kBounds, &kBounds,
                     ditherCopy, nullptr);
    }

    OwnedWorld source = MakeWorld(32, kBounds);
    OwnedWorld target = MakeWorld(32, kBounds);
};

TEST_F(Masked, AMaskThatIsStillWhiteLetsNothingThrough)
{
    for (const int depth : {1, 8, 16, 32}) {
        Paint(source, 0x123456);
        Paint(target, 0x00ABCDEF);
        CopyThrough(MakeWorld(depth, kBounds));
        EXPECT_EQ(ValueAt(BitsOf(target), 3, 18), 0x00ABCDEFU) << depth;
    }
}

TEST_F(Masked, ComponentsBlendByThemselves)
{
    const OwnedWorld mask = MakeWorld(32, kBounds);
    Paint(mask, 0x0080FF);
    Paint(source, 0x000000);
    Paint(target, 0xFFFFFF);
    CopyThrough(mask);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 0) & kColorsOf32, 0x0080FFU);
}

TEST_F(Masked, ABitMapIsAMaskToo)
{
    std::array<char, 32> bits{};
    bits[4] = 0x20; // row 1, column 2
    const BitMap mask = {bits.data(), 4, kBounds};
    Paint(source, 0x123456);
    Paint(target, 0xFFFFFF);
    CopyMask(BitsOf(source), &mask, BitsOf(target), &kBounds, &kBounds, &kBounds);
    EXPECT_EQ(ValueAt(BitsOf(target), 1, 2), 0x123456U);
    EXPECT_EQ(ValueAt(BitsOf(target), 1, 3), 0xFFFFFFU);
}

TEST_F(Masked, AnEmptyMaskRectDrawsNothing)
{
    const OwnedWorld mask = MakeWorld(1, kBounds);
    Paint(mask, 1);
    Paint(source, 0x123456);
    Paint(target, 0xFFFFFF);
    const Rect empty = {2, 2, 2, 9};
    CopyMask(BitsOf(source), BitsOf(mask), BitsOf(target), &kBounds, &empty, &kBounds);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 0), 0xFFFFFFU);
}

TEST_F(Masked, ABitMaskThatIsShrunkLetsThroughByItsShare)
{
    const Rect large = {0, 0, 16, 38};
    const OwnedWorld mask = MakeWorld(1, large);
    for (int v = 0; v < large.bottom; ++v) { // every other column is black
        for (int h = 0; h < large.right; h += 2) {
            reference::SetValueAt(BitsOf(mask), v, h, 1);
        }
    }
    Paint(source, 0x000000);
    Paint(target, 0xFFFFFF);
    CopyMask(BitsOf(source), BitsOf(mask), BitsOf(target), &kBounds, &large, &kBounds);
    EXPECT_EQ(ValueAt(BitsOf(target), 4, 9) & kColorsOf32, 0x808080U);
}

TEST_F(Masked, ASetBitIsBlackWhateverTheTableOfABitMaskSays)
{
    auto const colors = reinterpret_cast<CTabHandle>(NewHandleClear(8 + 2 * 8));
    (*colors)->ctSize = 1;
    (*colors)->ctTable[1] = {1, {0xFFFF, 0xFFFF, 0xFFFF}}; // and 0 is black
    const Rect large = {0, 0, 16, 38};
    Paint(source, 0x123456);
    for (const Rect& bounds : {kBounds, large}) { // as it is, and shrunk
        const OwnedWorld mask = MakeWorld(1, bounds, colors);
        for (int v = 0; v < bounds.bottom; ++v) {
            for (int h = 0; h < bounds.right; ++h) {
                reference::SetValueAt(BitsOf(mask), v, h, 1);
            }
        }
        Paint(target, 0xFFFFFF);
        CopyMask(BitsOf(source), BitsOf(mask), BitsOf(target), &kBounds, &bounds, &kBounds);
        EXPECT_EQ(ValueAt(BitsOf(target), 4, 9) & kColorsOf32, 0x123456U) << bounds.bottom;
    }
    DisposeHandle(reinterpret_cast<Handle>(colors));
}

TEST_F(Masked, WhatTheMaskHidesDoesNotShowUpWhereItIsShrunk)
{
    const Rect large = {0, 0, 16, 38};
    const OwnedWorld red = MakeWorld(32, large);
    const OwnedWorld mask = MakeWorld(1, large);
    for (int v = 0; v < large.bottom; ++v) {
        for (int h = 0; h < large.right; ++h) {
            const bool isShown = h % 2 == 0;
            reference::SetValueAt(BitsOf(red), v, h, isShown ? 0xFF0000 : 0x00FF00);
            reference::SetValueAt(BitsOf(mask), v, h, isShown ? 1 : 0);
        }
    }
    Paint(target, 0x0000FF);
    CopyMask(BitsOf(red), BitsOf(mask), BitsOf(target), &large, &large, &kBounds);
    EXPECT_EQ(ValueAt(BitsOf(target), 4, 9) & kColorsOf32, 0x800080U);
}

TEST_F(Masked, TheMasksRegionLimitsTheCopy)
{
    const OwnedWorld mask = MakeWorld(8, kBounds);
    Paint(mask, 255); // the platform's black
    Paint(source, 0x123456);
    Paint(target, 0xFFFFFF);
    RgnHandle const region = NewRgn();
    const Rect limit = {2, 2, 4, 4};
    RectRgn(region, &limit);
    CopyDeepMask(BitsOf(source), BitsOf(mask), BitsOf(target), &kBounds, &kBounds, &kBounds,
                 srcCopy, region);
    DisposeRgn(region);
    EXPECT_EQ(ValueAt(BitsOf(target), 3, 3) & kColorsOf32, 0x123456U);
    EXPECT_EQ(ValueAt(BitsOf(target), 3, 4), 0xFFFFFFU);
}

} // namespace

// SPDX-License-Identifier: MIT
//
// Mode ditherCopy: where it dithers, where it does not, and that it always does it alike.
#include "CopyReference.h"

#include <gtest/gtest.h>

namespace
{

using reference::BitsOf;
using reference::MakeWorld;
using reference::OwnedWorld;
using reference::SetValueAt;
using reference::ValueAt;

void Copy(const OwnedWorld& from, const OwnedWorld& to, SInt16 mode = ditherCopy)
{
    CopyBits(BitsOf(from), BitsOf(to), &BitsOf(from)->bounds, &BitsOf(to)->bounds, mode, nullptr);
}

void Paint(const OwnedWorld& world, UInt32 value)
{
    const Rect& bounds = BitsOf(world)->bounds;
    for (int v = bounds.top; v < bounds.bottom; ++v) {
        for (int h = bounds.left; h < bounds.right; ++h) {
            SetValueAt(BitsOf(world), v, h, value);
        }
    }
}

void ExpectSame(const OwnedWorld& a, const OwnedWorld& b)
{
    const Rect& bounds = BitsOf(a)->bounds;
    for (int v = bounds.top; v < bounds.bottom; ++v) {
        for (int h = bounds.left; h < bounds.right; ++h) {
            ASSERT_EQ(ValueAt(BitsOf(a), v, h), ValueAt(BitsOf(b), v, h)) << v << ", " << h;
        }
    }
}

// Every component in every cell of the pattern, at any place of it.
TEST(Dither, From16BitsTo32AndBackNothingChanges)
{
    const Rect bounds = {-3, -5, 64 - 3, 64 - 5};
    const OwnedWorld original = MakeWorld(16, bounds);
    const OwnedWorld wide = MakeWorld(32, bounds);
    const OwnedWorld back = MakeWorld(16, bounds);
    for (UInt32 level = 0; level < 32; ++level) {
        Paint(original, level << 10 | (31 - level) << 5 | (level ^ 9));
        Copy(original, wide);
        Copy(wide, back);
        ExpectSame(original, back);
    }
}

TEST(Dither, KeepsTheAverageOf32BitColorsAt16Bits)
{
    const Rect bounds = {0, 0, 8, 8};
    const OwnedWorld wide = MakeWorld(32, bounds);
    const OwnedWorld narrow = MakeWorld(16, bounds);
    for (int level = 0; level < 256; ++level) {
        Paint(wide, static_cast<UInt32>(level));
        Copy(wide, narrow);
        double sum = 0;
        for (int i = 0; i < 64; ++i) {
            sum += ValueAt(BitsOf(narrow), i / 8, i % 8) * 255.0 / 31.0;
        }
        EXPECT_NEAR(sum / 64, level, 1.1) << level;
    }
}

TEST(Dither, OtherModesCutTheLowBitsOff)
{
    const Rect bounds = {0, 0, 8, 8};
    const OwnedWorld wide = MakeWorld(32, bounds);
    const OwnedWorld narrow = MakeWorld(16, bounds);
    Paint(wide, 0x0F1707);
    Copy(wide, narrow, srcCopy);
    for (int i = 0; i < 64; ++i) {
        ASSERT_EQ(ValueAt(BitsOf(narrow), i / 8, i % 8), 1U << 10 | 2U << 5);
    }
}

TEST(Dither, AnIndexedSourceIsNotDitheredTo16Bits)
{
    std::mt19937 random(6);
    const Rect bounds = {0, 0, 20, 40};
    const OwnedWorld source = MakeWorld(8, bounds);
    const OwnedWorld dithered = MakeWorld(16, bounds);
    const OwnedWorld plain = MakeWorld(16, bounds);
    reference::FillWithNoise(source, random);
    Copy(source, dithered, ditherCopy);
    Copy(source, plain, srcCopy);
    ExpectSame(dithered, plain);
}

class DitherFrom32Bits : public testing::TestWithParam<int>
{
protected:
    static constexpr Rect kBounds = {0, 0, 32, 48};
    OwnedWorld source = MakeWorld(32, kBounds);
};

// The same pixel at the same place of the target comes out the same, whatever is drawn around it
// and wherever it comes from.
TEST_P(DitherFrom32Bits, IsFixedToThePlaceInTheTarget)
{
    std::mt19937 random(7);
    reference::FillWithNoise(source, random);
    const OwnedWorld whole = MakeWorld(GetParam(), kBounds);
    const OwnedWorld parts = MakeWorld(GetParam(), {-11, -13, 32, 48});
    Copy(source, whole);
    for (int piece = 0; piece < 200; ++piece) {
        const auto any = [&](int low, int high) {
            return static_cast<SInt16>(std::uniform_int_distribution<int>(low, high)(random));
        };
        const Rect part = {any(0, 31), any(0, 47), any(1, 32), any(1, 48)};
        CopyBits(BitsOf(source), BitsOf(parts), &part, &part, ditherCopy, nullptr);
    }
    CopyBits(BitsOf(source), BitsOf(parts), &kBounds, &kBounds, ditherCopy, nullptr);
    ExpectSame(whole, parts);
}

TEST_P(DitherFrom32Bits, LeavesColorsThatTheTargetHas)
{
    const OwnedWorld target = MakeWorld(GetParam(), kBounds);
    for (const UInt32 color : {0xFFFFFFU, 0x000000U}) {
        Paint(source, color);
        Copy(source, target);
        for (int v = 0; v < kBounds.bottom; ++v) {
            for (int h = 0; h < kBounds.right; ++h) {
                const int level = color == 0 ? 0 : 255;
                ASSERT_EQ(reference::ColorAt(BitsOf(target), v, h),
                          (reference::Components{level, level, level}));
            }
        }
    }
}

TEST_P(DitherFrom32Bits, MixesWhatTheTargetDoesNotHave)
{
    const OwnedWorld target = MakeWorld(GetParam(), kBounds);
    Paint(source, 0x6E6E6E); // in no table of the platform, between two colors of 16 bits
    Copy(source, target);
    double sum = 0;
    const UInt32 first = ValueAt(BitsOf(target), 0, 0);
    bool isMixed = false;
    for (int i = 0; i < 64; ++i) {
        sum += reference::ColorAt(BitsOf(target), i / 8, i % 8)[1];
        isMixed = isMixed || ValueAt(BitsOf(target), i / 8, i % 8) != first;
    }
    EXPECT_TRUE(isMixed);
    EXPECT_NEAR(sum / 64, 0x6E, 12);
}

INSTANTIATE_TEST_SUITE_P(ToDepth, DitherFrom32Bits, testing::Values(1, 2, 4, 8, 16));

} // namespace

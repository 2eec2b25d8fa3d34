// SPDX-License-Identifier: MIT
//
// Scaled copies: shrinking averages areas, enlarging takes the nearest pixel.
#include "CopyReference.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using reference::BitsOf;
using reference::ColorAt;
using reference::Components;
using reference::MakeWorld;
using reference::OwnedWorld;

// The share of each source pixel in one direction: what [place, place + 1) of the target covers.
std::vector<double> SharesOf(int place, int fromSize, int toSize)
{
    std::vector<double> shares(static_cast<size_t>(fromSize));
    if (fromSize <= toSize) {
        const double middle = (place + 0.5) * fromSize / toSize;
        shares[static_cast<size_t>(middle)] = 1;
        return shares;
    }
    const double factor = static_cast<double>(fromSize) / toSize;
    for (int i = 0; i < fromSize; ++i) {
        const double start = std::max<double>(i, place * factor);
        const double end = std::min<double>(i + 1, (place + 1) * factor);
        shares[static_cast<size_t>(i)] = std::max(0.0, end - start) / factor;
    }
    return shares;
}

std::array<double, 3> AverageAt(const BitMap* source, const Rect& from, const Rect& to, int v,
                                int h)
{
    const auto rows = SharesOf(v - to.top, from.bottom - from.top, to.bottom - to.top);
    const auto columns = SharesOf(h - to.left, from.right - from.left, to.right - to.left);
    std::array<double, 3> sum{};
    for (size_t row = 0; row < rows.size(); ++row) {
        for (size_t column = 0; column < columns.size(); ++column) {
            const double share = rows[row] * columns[column];
            if (share > 0) {
                const Components color = ColorAt(source, from.top + static_cast<int>(row),
                                                 from.left + static_cast<int>(column));
                for (size_t i = 0; i < 3; ++i) {
                    sum[i] += share * color[i];
                }
            }
        }
    }
    return sum;
}

// Every pixel of `to` that the target has, of a source that has all of `from`.
void ExpectAverages(const OwnedWorld& source, const OwnedWorld& target, const Rect& from,
                    const Rect& to)
{
    const Rect& bounds = BitsOf(target)->bounds;
    for (int v = std::max(to.top, bounds.top); v < std::min(to.bottom, bounds.bottom); ++v) {
        for (int h = std::max(to.left, bounds.left); h < std::min(to.right, bounds.right); ++h) {
            const auto expected = AverageAt(BitsOf(source), from, to, v, h);
            const Components color = ColorAt(BitsOf(target), v, h);
            for (size_t i = 0; i < 3; ++i) {
                ASSERT_LE(std::abs(color[i] - expected[i]), 0.51) << "at " << v << ", " << h;
            }
        }
    }
}

TEST(ScaledCopy, AveragesWhereItShrinksAndTakesTheNearestWhereItEnlarges)
{
    std::mt19937 random(3);
    const auto any = [&](int low, int high) {
        return static_cast<SInt16>(std::uniform_int_distribution<int>(low, high)(random));
    };
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const int depth = std::array{1, 2, 4, 8, 16, 32}[static_cast<size_t>(round) % 6];
        const OwnedWorld source = MakeWorld(depth, {-5, -9, 40, 41});
        const OwnedWorld target = MakeWorld(32, {-3, -4, 45, 50});
        reference::FillWithNoise(source, random);
        const Rect from = {any(-5, 10), any(-9, 10), any(11, 40), any(11, 41)};
        const Rect to = {any(-20, 10), any(-20, 10), any(11, 60), any(11, 70)};
        CopyBits(BitsOf(source), BitsOf(target), &from, &to, ditherCopy, nullptr);
        ExpectAverages(source, target, from, to);
    }
}

// Sizes that are far apart: a pixel is made of thousands.
TEST(ScaledCopy, AveragesHoweverMuchItShrinks)
{
    std::mt19937 random(7);
    const Rect to = {1, 2, 4, 9};
    for (const int depth : {8, 16, 32}) {
        for (const Rect& from : {Rect{0, 0, 40, 2000}, Rect{0, 0, 300, 230}, Rect{0, 0, 9000, 9},
                                 Rect{0, 0, 95, 225}, Rect{0, 0, 97, 223}}) {
            SCOPED_TRACE(testing::Message() << depth << " bits, " << from.bottom << " rows");
            const OwnedWorld source = MakeWorld(depth, from);
            const OwnedWorld target = MakeWorld(32, to);
            reference::FillWithNoise(source, random);
            CopyBits(BitsOf(source), BitsOf(target), &from, &to, srcCopy, nullptr);
            ExpectAverages(source, target, from, to);
        }
    }
}

TEST(ScaledCopy, LeavesOneColorAsItIs)
{
    std::mt19937 random(8);
    const Rect bounds = {0, 0, 700, 300};
    const OwnedWorld source = MakeWorld(32, bounds);
    const OwnedWorld target = MakeWorld(32, bounds);
    for (UInt32 level = 0; level < 256; level += 5) {
        const UInt32 color = 0xFF0000 | (255 - level) << 8 | level;
        for (int i = 0; i < 700 * 300; ++i) {
            reference::SetValueAt(BitsOf(source), i / 300, i % 300, color);
        }
        const auto any = [&](int most) {
            return static_cast<SInt16>(1 + random() % static_cast<UInt32>(most));
        };
        const Rect from = {0, 0, any(700), any(300)};
        const Rect to = {0, 0, any(40), any(40)};
        CopyBits(BitsOf(source), BitsOf(target), &from, &to, srcCopy, nullptr);
        for (int i = 0; i < to.right * to.bottom; ++i) {
            ASSERT_EQ(reference::ValueAt(BitsOf(target), i / to.right, i % to.right), color)
                << from.bottom << " by " << from.right << " to " << to.bottom << " by " << to.right;
        }
    }
}

TEST(ScaledCopy, HalvesToTheNearestAverageOfFour)
{
    std::mt19937 random(6);
    const Rect to = {-3, 2, 12, 302}; // what it is of is wider than copies are made in one piece
    for (const int depth : {1, 8, 16, 32}) {
        for (const Rect& bounds : {Rect{0, 0, 30, 600}, Rect{2, 5, 27, 597}}) {
            const Rect from = {0, 0, 30, 600}; // of which the second has a part only
            const OwnedWorld source = MakeWorld(depth, bounds);
            const OwnedWorld target = MakeWorld(32, to);
            reference::FillWithNoise(source, random);
            CopyBits(BitsOf(source), BitsOf(target), &from, &to, srcCopy, nullptr);
            for (int v = to.top + 1; v < to.bottom - 2; ++v) {
                for (int h = to.left + 3; h < to.right - 2; ++h) {
                    const Components color = ColorAt(BitsOf(target), v, h);
                    Components sum = {};
                    for (int k = 0; k < 4; ++k) {
                        const Components one = ColorAt(BitsOf(source), 2 * (v - to.top) + k / 2,
                                                       2 * (h - to.left) + k % 2);
                        for (size_t i = 0; i < 3; ++i) {
                            sum[i] += one[i];
                        }
                    }
                    for (size_t i = 0; i < 3; ++i) {
                        ASSERT_EQ(color[i], (sum[i] + 2) / 4)
                            << depth << " bits, at " << v << ", " << h;
                    }
                }
            }
        }
    }
}

// What a copy onto `to` makes, in parts of 7 by 11 pixels, be it in one go with all of them.
void ExpectSameInParts(const OwnedWorld& source, const Rect& from, const Rect& to, int depth)
{
    const OwnedWorld whole = MakeWorld(depth, {0, 0, 100, 130});
    const OwnedWorld parts = MakeWorld(depth, {0, 0, 100, 130});
    CopyBits(BitsOf(source), BitsOf(whole), &from, &to, ditherCopy, nullptr);
    RgnHandle const region = NewRgn();
    for (int i = 0; i < 15 * 12; ++i) {
        Rect part = {0, 0, 7, 11};
        OffsetRect(&part, static_cast<SInt16>(i % 12 * 11), static_cast<SInt16>(i / 12 * 7));
        RectRgn(region, &part);
        CopyBits(BitsOf(source), BitsOf(parts), &from, &to, ditherCopy, region);
    }
    DisposeRgn(region);
    for (int i = 0; i < 100 * 130; ++i) {
        ASSERT_EQ(reference::ValueAt(BitsOf(parts), i / 130, i % 130),
                  reference::ValueAt(BitsOf(whole), i / 130, i % 130));
    }
}

TEST(ScaledCopy, DrawsTheSameInPartsAsAtOnce)
{
    std::mt19937 random(4);
    const Rect from = {0, 0, 350, 490};
    const OwnedWorld source = MakeWorld(32, from);
    reference::FillWithNoise(source, random);
    for (const Rect& part : {Rect{0, 0, 50, 70}, from}) { // the second one shrinks by more than 4
        for (const Rect& to :
             {Rect{1, 2, 33, 40}, Rect{1, 2, 26, 37}, Rect{1, 2, 8, 13}, Rect{-7, -9, 93, 131}}) {
            ExpectSameInParts(source, part, to, 16);
            ExpectSameInParts(source, part, to, 32);
        }
    }
}

TEST(ScaledCopy, KeepsPixelValuesWhereItEnlarges)
{
    const OwnedWorld source = MakeWorld(8, {0, 0, 2, 2});
    const OwnedWorld target = MakeWorld(8, {0, 0, 6, 6});
    for (int v = 0; v < 2; ++v) {
        for (int h = 0; h < 2; ++h) {
            reference::SetValueAt(BitsOf(source), v, h, static_cast<UInt32>(10 * v + h + 1));
        }
    }
    const Rect from = {0, 0, 2, 2};
    const Rect to = {0, 0, 6, 6};
    CopyBits(BitsOf(source), BitsOf(target), &from, &to, srcCopy, nullptr);
    for (int v = 0; v < 6; ++v) {
        for (int h = 0; h < 6; ++h) {
            EXPECT_EQ(reference::ValueAt(BitsOf(target), v, h),
                      static_cast<UInt32>(10 * (v / 3) + h / 3 + 1));
        }
    }
}

TEST(ScaledCopy, LeavesOutWhatTheSourceDoesNotHave)
{
    const OwnedWorld source = MakeWorld(32, {0, 0, 4, 4});
    const OwnedWorld target = MakeWorld(32, {0, 0, 8, 8});
    for (int i = 0; i < 16; ++i) {
        reference::SetValueAt(BitsOf(source), i / 4, i % 4, 0x112233);
    }
    const Rect from = {-4, -4, 4, 4}; // a quarter of it is there
    const Rect to = {0, 0, 4, 4};
    CopyBits(BitsOf(source), BitsOf(target), &from, &to, srcCopy, nullptr);
    for (int v = 0; v < 4; ++v) {
        for (int h = 0; h < 4; ++h) {
            EXPECT_EQ(reference::ValueAt(BitsOf(target), v, h),
                      v >= 2 && h >= 2 ? 0x112233U : 0xFFFFFFFFU);
        }
    }
}

TEST(ScaledCopy, IntoItsOwnMapReadsEverythingFirst)
{
    std::mt19937 random(5);
    const OwnedWorld world = MakeWorld(32, {0, 0, 40, 40});
    const OwnedWorld apart = MakeWorld(32, {0, 0, 40, 40});
    reference::FillWithNoise(world, random);
    const Rect all = {0, 0, 40, 40};
    CopyBits(BitsOf(world), BitsOf(apart), &all, &all, srcCopy, nullptr);
    const Rect from = {0, 0, 10, 10};
    const Rect to = {5, 5, 35, 35};
    CopyBits(BitsOf(apart), BitsOf(apart), &from, &to, srcCopy, nullptr);
    const OwnedWorld expected = MakeWorld(32, {0, 0, 40, 40});
    CopyBits(BitsOf(world), BitsOf(expected), &all, &all, srcCopy, nullptr);
    CopyBits(BitsOf(world), BitsOf(expected), &from, &to, srcCopy, nullptr);
    for (int i = 0; i < 1600; ++i) {
        ASSERT_EQ(reference::ValueAt(BitsOf(apart), i / 40, i % 40),
                  reference::ValueAt(BitsOf(expected), i / 40, i % 40));
    }
}

} // namespace

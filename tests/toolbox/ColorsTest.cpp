// SPDX-License-Identifier: MIT
//
// Foreground and background, colour tables, and tinting by them.
#include "CopyReference.h"
#include "toolbox/memory/Memory.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace
{

using reference::BitsOf;
using reference::Components;
using reference::MakeWorld;
using reference::OwnedWorld;
using reference::SetValueAt;
using reference::ValueAt;

constexpr Rect kBounds = {-2, 3, 8, 28};
constexpr RGBColor kRed = {0xFFFF, 0, 0};
constexpr RGBColor kSomeColor = {0x12FF, 0x80FF, 0xFEFF};

class Colors : public testing::Test
{
protected:
    ~Colors() override { SetGWorld(nullptr, nullptr); }
};

TEST_F(Colors, EraseFillsTheRectAtAllDepthsAndNothingElse)
{
    for (const int depth : {1, 2, 4, 8, 16, 32}) {
        const OwnedWorld world = MakeWorld(depth, kBounds);
        const UInt32 white = ValueAt(BitsOf(world), 0, 5);
        SetGWorld(world.get(), nullptr);
        BackColor(blackColor);
        const Rect erased = {-1, 8, 5, 21};
        EraseRect(&erased);
        for (int v = kBounds.top; v < kBounds.bottom; ++v) {
            for (int h = kBounds.left; h < kBounds.right; ++h) {
                if (reference::Contains(erased, v, h)) {
                    ASSERT_EQ(reference::ColorAt(BitsOf(world), v, h), (Components{0, 0, 0}));
                } else {
                    ASSERT_EQ(ValueAt(BitsOf(world), v, h), white) << depth;
                }
            }
        }
    }
}

TEST_F(Colors, EraseStaysInTheClip)
{
    const OwnedWorld world = MakeWorld(16, kBounds);
    SetGWorld(world.get(), nullptr);
    RgnHandle const clip = NewRgn();
    const Rect limit = {0, 5, 2, 7};
    RectRgn(clip, &limit);
    SetClip(clip);
    DisposeRgn(clip);
    RGBBackColor(&kRed);
    EraseRect(&kBounds);
    EXPECT_EQ(ValueAt(BitsOf(world), 1, 6), 0x7C00U);
    EXPECT_EQ(ValueAt(BitsOf(world), 1, 7), 0x7FFFU);
    EXPECT_EQ(ValueAt(BitsOf(world), 2, 6), 0x7FFFU);
}

TEST_F(Colors, NamesOtherThanWhiteAreBlack)
{
    const OwnedWorld world = MakeWorld(32, kBounds);
    SetGWorld(world.get(), nullptr);
    BackColor(whiteColor);
    EraseRect(&kBounds);
    EXPECT_EQ(ValueAt(BitsOf(world), 0, 5) & 0xFFFFFF, 0xFFFFFFU);
    BackColor(205);
    EraseRect(&kBounds);
    EXPECT_EQ(ValueAt(BitsOf(world), 0, 5) & 0xFFFFFF, 0U);
}

TEST_F(Colors, WithoutAPortNothingHappens)
{
    const OwnedWorld world = MakeWorld(16, kBounds);
    const UInt32 white = ValueAt(BitsOf(world), 0, 5);
    ForeColor(blackColor);
    BackColor(blackColor);
    RGBForeColor(&kRed);
    RGBBackColor(&kRed);
    EraseRect(&kBounds);
    EXPECT_EQ(ValueAt(BitsOf(world), 0, 5), white);
    SetGWorld(world.get(), nullptr);
    EraseRect(&kBounds);
    EXPECT_EQ(ValueAt(BitsOf(world), 0, 5), white) << "its own background";
}

TEST_F(Colors, APixelValueIsThatOfTheDevice)
{
    EXPECT_EQ(Color2Index(&kSomeColor), 0x1280FE) << "no device: 32 bits";
    const OwnedWorld narrow = MakeWorld(16, kBounds);
    SetGWorld(narrow.get(), nullptr);
    EXPECT_EQ(Color2Index(&kSomeColor), 2 << 10 | 16 << 5 | 31);
    const OwnedWorld indexed = MakeWorld(8, kBounds);
    SetGWorld(indexed.get(), nullptr);
    EXPECT_EQ(Color2Index(&kSomeColor),
              static_cast<SInt32>(reference::NearestValue(BitsOf(indexed), {0x12, 0x80, 0xFE})));
}

TEST_F(Colors, TheNearestIndexIsExact)
{
    std::mt19937 random(8);
    for (const int depth : {1, 2, 4, 8}) {
        const OwnedWorld world = MakeWorld(depth, kBounds);
        SetGWorld(world.get(), nullptr);
        for (int i = 0; i < 500; ++i) {
            const auto any = [&] { return static_cast<UInt16>(random()); };
            const RGBColor color = {any(), any(), any()};
            ASSERT_EQ(Color2Index(&color),
                      static_cast<SInt32>(reference::NearestValue(
                          BitsOf(world), {color.red >> 8, color.green >> 8, color.blue >> 8})));
        }
    }
}

TEST_F(Colors, SeedsAreNeverGivenTwice)
{
    std::set<SInt32> seeds;
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(seeds.insert(GetCTSeed()).second);
    }
}

RGBColor EntryOf(int depth, size_t index)
{
    return (*(*GetGWorldPixMap(MakeWorld(depth, kBounds).get()))->pmTable)->ctTable[index].rgb;
}

bool operator==(const RGBColor& a, const RGBColor& b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

TEST_F(Colors, ThePlatformsTablesBeginWithWhiteAndEndWithBlack)
{
    for (const int depth : {1, 2, 4, 8}) {
        const size_t last = (size_t{1} << depth) - 1;
        EXPECT_TRUE((EntryOf(depth, 0) == RGBColor{0xFFFF, 0xFFFF, 0xFFFF})) << depth;
        EXPECT_TRUE((EntryOf(depth, last) == RGBColor{0, 0, 0})) << depth;
    }
}

TEST_F(Colors, TheTableOf8BitsIsACubeAndFourRamps)
{
    EXPECT_TRUE((EntryOf(8, 1) == RGBColor{0xFFFF, 0xFFFF, 0xCCCC}));
    EXPECT_TRUE((EntryOf(8, 35) == RGBColor{0xFFFF, 0, 0}));
    EXPECT_TRUE((EntryOf(8, 214) == RGBColor{0, 0, 0x3333}));
    EXPECT_TRUE((EntryOf(8, 215) == RGBColor{0xEEEE, 0, 0}));
    EXPECT_TRUE((EntryOf(8, 225) == RGBColor{0, 0xEEEE, 0}));
    EXPECT_TRUE((EntryOf(8, 235) == RGBColor{0, 0, 0xEEEE}));
    EXPECT_TRUE((EntryOf(8, 245) == RGBColor{0xEEEE, 0xEEEE, 0xEEEE}));
    EXPECT_TRUE((EntryOf(8, 254) == RGBColor{0x1111, 0x1111, 0x1111}));
}

CTabHandle MakeTable(SInt16 flags)
{
    auto const table = reinterpret_cast<CTabHandle>(NewHandleClear(8 + 3 * 8));
    (*table)->ctSeed = GetCTSeed();
    (*table)->ctFlags = flags;
    (*table)->ctSize = 2;
    (*table)->ctTable[0] = {2, {0x0A00, 0, 0}};
    (*table)->ctTable[1] = {0, {0x0B00, 0, 0}};
    (*table)->ctTable[2] = {1, {0x0C00, 0, 0}};
    return table;
}

UInt32 ColorOfIndex1(CTabHandle table)
{
    const OwnedWorld indexed = MakeWorld(8, kBounds, table);
    const OwnedWorld direct = MakeWorld(32, kBounds);
    SetValueAt(BitsOf(indexed), 0, 5, 1);
    CopyBits(BitsOf(indexed), BitsOf(direct), &kBounds, &kBounds, srcCopy, nullptr);
    DisposeHandle(reinterpret_cast<Handle>(table));
    return ValueAt(BitsOf(direct), 0, 5);
}

TEST_F(Colors, AnEntryStandsForItsValue)
{
    EXPECT_EQ(ColorOfIndex1(MakeTable(0)), 0x0C0000U);
}

TEST_F(Colors, AnEntryOfADevicesTableStandsForItsPosition)
{
    EXPECT_EQ(ColorOfIndex1(MakeTable(INT16_MIN)), 0x0B0000U);
}

// Of 200 entries, in order.
CTabHandle MakeTableOf(const std::function<RGBColor(UInt32)>& entry)
{
    auto const table = reinterpret_cast<CTabHandle>(NewHandleClear(8 + 200 * 8));
    (*table)->ctSeed = GetCTSeed();
    (*table)->ctSize = 199;
    for (UInt32 i = 0; i < 200; ++i) {
        (*table)->ctTable[i] = {static_cast<SInt16>(i), entry(i)};
    }
    return table;
}

RGBColor Widened(UInt32 red, UInt32 green, UInt32 blue)
{
    const auto wide = [](UInt32 component) { return static_cast<UInt16>((component & 255) * 257); };
    return {wide(red), wide(green), wide(blue)};
}

TEST_F(Colors, TheNearestIndexIsExactHoweverTheColorsLie)
{
    std::mt19937 random(9);
    const auto any = [&](UInt32 range) { return static_cast<UInt32>(random()) % range; };
    const std::function<RGBColor(UInt32)> entries[] = {
        [&](UInt32) { return Widened(any(256), any(256), any(256)); },
        [](UInt32 i) { return Widened(i, i, i); },                            // close together
        [](UInt32 i) { return Widened(i % 7 * 40, i % 3 * 99, i % 4 * 80); }, // some of them twice
        [&](UInt32) { return Widened(120 + any(20), 120 + any(20), 120 + any(20)); }};
    for (const auto& entry : entries) {
        CTabHandle const table = MakeTableOf(entry);
        const OwnedWorld world = MakeWorld(8, kBounds, table);
        SetGWorld(world.get(), nullptr);
        for (int i = 0; i < 3000; ++i) {
            const RGBColor color = Widened(any(256), any(256), any(256));
            ASSERT_EQ(Color2Index(&color),
                      static_cast<SInt32>(reference::NearestValue(
                          BitsOf(world), {color.red >> 8, color.green >> 8, color.blue >> 8})));
        }
        SetGWorld(nullptr, nullptr);
        DisposeHandle(reinterpret_cast<Handle>(table));
    }
}

// More of them than are remembered.
TEST_F(Colors, TablesAreToldApartByTheirSeeds)
{
    for (UInt16 red = 0; red < 200; ++red) {
        CTabHandle const table = MakeTable(0);
        (*table)->ctTable[2].rgb.red = static_cast<UInt16>(red << 8);
        EXPECT_EQ(ColorOfIndex1(table), UInt32{red} << 16);
    }
}

class Tinting : public Colors
{
protected:
    // Copies while `current` is the current port and the target has these colours.
    void CopyTinted(const BitMap* source, const OwnedWorld& target, const OwnedWorld& current)
    {
        SetGWorld(target.get(), nullptr);
        RGBForeColor(&kSomeColor);
        RGBBackColor(&kRed);
        SetGWorld(current.get(), nullptr);
        CopyBits(source, BitsOf(target), &kBounds, &kBounds, srcCopy, nullptr);
    }
};

TEST_F(Tinting, SetBitsTakeTheForegroundAndClearOnesTheBackground)
{
    std::array<char, 40> bits{};
    bits[2 * 4] = 0x40; // (0, 4)
    const BitMap bitMap = {bits.data(), 4, kBounds};
    const OwnedWorld target = MakeWorld(32, kBounds);
    CopyTinted(&bitMap, target, target);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 4), 0x1280FEU);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 5), 0xFF0000U);
}

TEST_F(Tinting, IsByTheColorsOfThePortThatOwnsTheTarget)
{
    const OwnedWorld source = MakeWorld(1, kBounds);
    const OwnedWorld target = MakeWorld(16, kBounds);
    const OwnedWorld other = MakeWorld(32, kBounds);
    CopyTinted(BitsOf(source), target, other);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 4), 0x7C00U);
}

TEST_F(Tinting, ColorsLieBetweenByTheirComponents)
{
    for (const int depth : {2, 8, 16, 32}) {
        std::mt19937 random(9);
        const OwnedWorld source = MakeWorld(depth, kBounds);
        const OwnedWorld target = MakeWorld(32, kBounds);
        reference::FillWithNoise(source, random);
        CopyTinted(BitsOf(source), target, target);
        for (int v = kBounds.top; v < kBounds.bottom; ++v) {
            for (int h = kBounds.left; h < kBounds.right; ++h) {
                const Components expected = reference::Blend(
                    {0x12, 0x80, 0xFE}, {0xFF, 0, 0}, reference::ColorAt(BitsOf(source), v, h));
                ASSERT_EQ(reference::ColorAt(BitsOf(target), v, h), expected) << depth;
            }
        }
    }
}

TEST_F(Tinting, ADeepMaskBecomesTheForegroundWhereItIsOpaque)
{
    const OwnedWorld mask = MakeWorld(16, kBounds);
    const OwnedWorld target = MakeWorld(16, kBounds);
    SetValueAt(BitsOf(mask), 0, 4, 0);
    SetGWorld(target.get(), nullptr);
    RGBForeColor(&kRed);
    BackColor(whiteColor);
    CopyBits(BitsOf(mask), BitsOf(target), &kBounds, &kBounds, ditherCopy, nullptr);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 4), 0x7C00U);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 5), 0x7FFFU);
}

} // namespace

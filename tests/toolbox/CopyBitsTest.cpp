// SPDX-License-Identifier: MIT
//
// CopyBits without scaling, dithering or masks, against a copy pixel by pixel.
#include "CopyReference.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

namespace
{

using reference::BitsOf;
using reference::ColorAt;
using reference::Components;
using reference::Contains;
using reference::MakeWorld;
using reference::OwnedWorld;
using reference::ValueAt;

constexpr int kDepths[] = {1, 2, 4, 8, 16, 32};

std::vector<UInt32> ValuesOf(const OwnedWorld& world)
{
    const BitMap* const bits = BitsOf(world);
    std::vector<UInt32> values;
    for (int v = bits->bounds.top; v < bits->bounds.bottom; ++v) {
        for (int h = bits->bounds.left; h < bits->bounds.right; ++h) {
            values.push_back(ValueAt(bits, v, h));
        }
    }
    return values;
}

// Rectangles that often reach past the maps.
class Rects
{
public:
    explicit Rects(std::mt19937& random) : random_(random) {}

    SInt16 Between(int low, int high)
    {
        return static_cast<SInt16>(std::uniform_int_distribution<int>(low, high)(random_));
    }
    Rect Any()
    {
        const SInt16 top = Between(-30, 30);
        const SInt16 left = Between(-50, 50);
        return {top, left, static_cast<SInt16>(top + Between(-1, 40)),
                static_cast<SInt16>(left + Between(-1, 90))};
    }
    Rect MovedTo(const Rect& rect, SInt16 top, SInt16 left)
    {
        return {top, left, static_cast<SInt16>(top + rect.bottom - rect.top),
                static_cast<SInt16>(left + rect.right - rect.left)};
    }

private:
    std::mt19937& random_;
};

struct OwnedRegion {
    RgnHandle handle = NewRgn();

    explicit OwnedRegion(const Rect& rect) { RectRgn(handle, &rect); }
    ~OwnedRegion() { DisposeRgn(handle); }
    OwnedRegion(const OwnedRegion&) = delete;
    OwnedRegion& operator=(const OwnedRegion&) = delete;
};

// What the target must hold after an unscaled copy, given what it held.
std::vector<UInt32> ExpectedCopy(const BitMap* source, const BitMap* target, const Rect& from,
                                 const Rect& to, const Rect& limit)
{
    std::vector<UInt32> expected;
    for (int v = target->bounds.top; v < target->bounds.bottom; ++v) {
        for (int h = target->bounds.left; h < target->bounds.right; ++h) {
            const int fromV = v - to.top + from.top;
            const int fromH = h - to.left + from.left;
            UInt32 value = ValueAt(target, v, h);
            if (Contains(to, v, h) && Contains(limit, v, h) &&
                Contains(source->bounds, fromV, fromH)) {
                value = reference::DepthOf(source) == reference::DepthOf(target)
                            ? ValueAt(source, fromV, fromH)
                            : reference::NearestValue(target, ColorAt(source, fromV, fromH));
            }
            expected.push_back(value);
        }
    }
    return expected;
}

TEST(CopyBits, CopiesWhatAPixelByPixelCopyWouldAtAllDepths)
{
    std::mt19937 random(1);
    Rects rects(random);
    for (const int fromDepth : kDepths) {
        for (const int toDepth : kDepths) {
            const OwnedWorld source = MakeWorld(fromDepth, {-9, -20, 25, 51});
            const OwnedWorld target = MakeWorld(toDepth, {-13, -7, 20, 70});
            reference::FillWithNoise(source, random);
            for (int round = 0; round < 40; ++round) {
                reference::FillWithNoise(target, random);
                const Rect from = rects.Any();
                const Rect to = rects.MovedTo(from, rects.Between(-30, 30), rects.Between(-40, 60));
                const Rect limit = rects.Any();
                const OwnedRegion region(limit);
                const auto expected = ExpectedCopy(BitsOf(source), BitsOf(target), from, to, limit);
                CopyBits(BitsOf(source), BitsOf(target), &from, &to, srcCopy, region.handle);
                ASSERT_EQ(ValuesOf(target), expected)
                    << fromDepth << " to " << toDepth << " bits, round " << round;
            }
        }
    }
}

TEST(CopyBits, CopiesWithinOneMapAsIfItWereTwo)
{
    std::mt19937 random(2);
    Rects rects(random);
    for (const int depth : kDepths) {
        const OwnedWorld world = MakeWorld(depth, {-9, -20, 25, 51});
        for (int round = 0; round < 60; ++round) {
            reference::FillWithNoise(world, random);
            const Rect from = rects.Any();
            const Rect to =
                rects.MovedTo(from, static_cast<SInt16>(from.top + rects.Between(-5, 5)),
                              static_cast<SInt16>(from.left + rects.Between(-9, 9)));
            const auto expected =
                ExpectedCopy(BitsOf(world), BitsOf(world), from, to, BitsOf(world)->bounds);
            CopyBits(BitsOf(world), BitsOf(world), &from, &to, srcCopy, nullptr);
            ASSERT_EQ(ValuesOf(world), expected) << depth << " bits, round " << round;
        }
    }
}

class CopyToWindow : public testing::Test
{
protected:
    CopyToWindow()
    {
        const Rect place = {100, 100, 140, 150};
        CreateWindowPort(&place, &port);
    }
    ~CopyToWindow() override
    {
        SetPort(nullptr);
        DisposeWindowPort(port);
    }
    const BitMap* Bits() const { return reinterpret_cast<const BitMap*>(*GetGWorldPixMap(port)); }

    CGrafPtr port = nullptr;
    OwnedWorld source = MakeWorld(16, {0, 0, 10, 10});
};

TEST_F(CopyToWindow, AddsWhatItDrewToTheDirtyRegion)
{
    const Rect from = {0, 0, 10, 20}; // the source ends at 10
    const Rect to = {35, 5, 45, 25};
    CopyBits(BitsOf(source), Bits(), &from, &to, srcCopy, nullptr);
    const OwnedRegion dirty({});
    EXPECT_TRUE(TakeDirtyRegion(port, dirty.handle));
    ASSERT_EQ(CountRegionRects(dirty.handle), 1);
    const Rect drawn = GetRegionRect(dirty.handle, 0);
    const Rect expected = {35, 5, 40, 15};
    EXPECT_TRUE(EqualRect(&drawn, &expected));
}

TEST_F(CopyToWindow, OfManySmallPicturesMarksAllOfThem)
{
    const Rect from = {0, 0, 1, 1};
    for (SInt16 i = 0; i < 1000; ++i) { // every other pixel of 40 rows of 50
        const auto v = static_cast<SInt16>(i / 25);
        const auto h = static_cast<SInt16>(i % 25 * 2);
        const Rect to = {v, h, static_cast<SInt16>(v + 1), static_cast<SInt16>(h + 1)};
        CopyBits(BitsOf(source), Bits(), &from, &to, srcCopy, nullptr);
    }
    const OwnedRegion dirty({});
    TakeDirtyRegion(port, dirty.handle);
    EXPECT_EQ(CountRegionRects(dirty.handle), 25) << "columns of 40 rows";
    EXPECT_FALSE(TakeDirtyRegion(port, nullptr));
}

TEST_F(CopyToWindow, EmptyRectsDrawNothing)
{
    const Rect empty = {3, 3, 3, 9};
    const Rect full = {0, 0, 10, 10};
    CopyBits(BitsOf(source), Bits(), &empty, &full, srcCopy, nullptr);
    CopyBits(BitsOf(source), Bits(), &full, &empty, srcCopy, nullptr);
    EXPECT_FALSE(TakeDirtyRegion(port, nullptr));
}

TEST_F(CopyToWindow, IsClippedByItsPortWhicheverIsCurrent)
{
    SetPort(port);
    const OwnedRegion clip({2, 3, 4, 5});
    SetClip(clip.handle);
    SetPort(nullptr);
    reference::SetValueAt(BitsOf(source), 3, 4, 0);
    reference::SetValueAt(BitsOf(source), 4, 4, 0);
    const Rect all = {0, 0, 10, 10};
    CopyBits(BitsOf(source), Bits(), &all, &all, srcCopy, nullptr);
    EXPECT_EQ(ColorAt(Bits(), 3, 4), (Components{0, 0, 0}));
    EXPECT_EQ(ColorAt(Bits(), 4, 4), (Components{255, 255, 255}));
}

// Regions of more than one rectangle come about where two are joined.
TEST(CopyBits, IsLimitedByRegionsOfManyRects)
{
    std::mt19937 random(10);
    const Rect place = {0, 0, 30, 30};
    CGrafPtr port = nullptr;
    CreateWindowPort(&place, &port);
    const OwnedWorld world = MakeWorld(32, place);
    const OwnedRegion region({});
    const Rect pixel = {0, 0, 1, 1};
    const auto* const bits = reinterpret_cast<const BitMap*>(*GetGWorldPixMap(port));
    for (SInt16 i = 0; i < 30; ++i) { // the diagonal
        const Rect to = {i, i, static_cast<SInt16>(i + 1), static_cast<SInt16>(i + 1)};
        CopyBits(BitsOf(world), bits, &pixel, &to, srcCopy, nullptr);
    }
    TakeDirtyRegion(port, region.handle);
    DisposeWindowPort(port);
    const OwnedWorld source = MakeWorld(8, place);
    reference::FillWithNoise(source, random);
    CopyBits(BitsOf(source), BitsOf(world), &place, &place, srcCopy, region.handle);
    for (int i = 0; i < 900; ++i) {
        const Components expected =
            i / 30 == i % 30 ? ColorAt(BitsOf(source), i / 30, i % 30) : Components{255, 255, 255};
        ASSERT_EQ(ColorAt(BitsOf(world), i / 30, i % 30), expected) << i;
    }
}

TEST(CopyBits, MapsOfNoDepthDrawNothing)
{
    const OwnedWorld target = MakeWorld(32, {0, 0, 4, 4});
    const Rect all = {0, 0, 4, 4};
    PixMap odd = **GetGWorldPixMap(target.get());
    std::array<char, 64> black{};
    odd.baseAddr = black.data();
    odd.pixelSize = 24;
    CopyBits(reinterpret_cast<const BitMap*>(&odd), BitsOf(target), &all, &all, srcCopy, nullptr);
    EXPECT_EQ(ValueAt(BitsOf(target), 0, 0), 0xFFFFFFFFU);
}

} // namespace

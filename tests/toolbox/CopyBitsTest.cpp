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

} // namespace

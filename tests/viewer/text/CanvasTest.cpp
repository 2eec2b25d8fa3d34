// SPDX-License-Identifier: MIT
#include "viewer/text/Canvas.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using viewer::Canvas;
using viewer::Ink;

constexpr SInt16 kSide = 8;

class CanvasTest : public testing::Test
{
protected:
    int RedAt(int v, int h) const { return pixels[static_cast<size_t>((v * kSide + h) * 4 + 1)]; }
    int CountRed() const
    {
        int count = 0;
        for (int i = 0; i < kSide * kSide; ++i) {
            count += RedAt(i / kSide, i % kSide) != 0 ? 1 : 0;
        }
        return count;
    }

    std::vector<UInt8> pixels = std::vector<UInt8>(kSide * kSide * 4);
    Canvas canvas{pixels.data(), kSide * 4, {0, 0, kSide, kSide}};
    Ink red{200, 0, 0};
};

TEST_F(CanvasTest, FillsARectangle)
{
    canvas.Fill({1, 2, 3, 5}, red);
    EXPECT_EQ(CountRed(), 6);
    EXPECT_EQ(RedAt(1, 2), 200);
    EXPECT_EQ(RedAt(2, 4), 200);
}

TEST_F(CanvasTest, DrawsNothingOutsideItsClip)
{
    canvas.clip = {2, 2, 4, 4};
    canvas.Fill({-100, -100, 100, 100}, red);
    canvas.Blend(1, 2, red, 255);
    canvas.Blend(4, 3, red, 255);
    EXPECT_EQ(CountRed(), 4);
}

TEST_F(CanvasTest, AFrameLiesOnTheInnerSideOfItsEdge)
{
    canvas.Frame({0, 0, 6, 6}, 2, red);
    EXPECT_EQ(CountRed(), 36 - 4);
    EXPECT_EQ(RedAt(2, 2), 0);
}

TEST_F(CanvasTest, CoverageMixesTheInkWithWhatIsThere)
{
    canvas.Blend(0, 0, red, 255);
    canvas.Blend(1, 0, red, 128);
    canvas.Blend(2, 0, red, 0);
    EXPECT_EQ(RedAt(0, 0), 200);
    EXPECT_EQ(RedAt(0, 1), 100);
    EXPECT_EQ(RedAt(0, 2), 0);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "src/image/PixelWriting.h"
#include "tests/image/ScriptedWorlds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

UInt32 Pixel(UInt16 red, UInt16 green, UInt16 blue, SInt16 depth)
{
    const RGBColor color = {red, green, blue};
    return RGBToDirectPixel(&color, depth);
}

} // namespace

TEST(RGBToDirectPixel, Depth1LooksAtRedOnlyAndOneIsBlack)
{
    EXPECT_EQ(Pixel(0x7FFE, 0xFFFF, 0xFFFF, 1), 1U);
    EXPECT_EQ(Pixel(0x7FFF, 0, 0, 1), 0U);
    EXPECT_EQ(Pixel(0xFFFF, 0, 0, 1), 0U);
    EXPECT_EQ(Pixel(0, 0, 0, 1), 1U);
}

TEST(RGBToDirectPixel, AsksTheDeviceForIndices)
{
    for (const SInt16 depth : std::initializer_list<SInt16>{2, 4, 8}) {
        test::ResetWorlds();
        test::Worlds().colorIndex = 200;
        EXPECT_EQ(Pixel(1, 2, 3, depth), 200U) << depth;
        EXPECT_THAT(test::Worlds().calls, testing::ElementsAre("Color2Index 1 2 3")) << depth;
    }
}

TEST(RGBToDirectPixel, Depth16TakesTheTopFiveBitsOfEach)
{
    EXPECT_EQ(Pixel(0xFFFF, 0x8000, 0x0000, 16), 0x7E00U);
    EXPECT_EQ(Pixel(0x0800, 0x1000, 0x2000, 16), 1U << 10 | 2U << 5 | 4U);
    EXPECT_EQ(Pixel(0x07FF, 0x07FF, 0x07FF, 16), 0U);
    EXPECT_EQ(Pixel(0xFFFF, 0xFFFF, 0xFFFF, 16), 0x7FFFU);
}

TEST(RGBToDirectPixel, Depth32TakesTheHighBytes)
{
    EXPECT_EQ(Pixel(0xFFFF, 0x8000, 0x0000, 32), 0x00FF8000U);
    EXPECT_EQ(Pixel(0x12FF, 0x34FF, 0x56FF, 32), 0x00123456U);
}

TEST(RGBToDirectPixel, IsZeroAtOtherDepths)
{
    for (const SInt16 depth : std::initializer_list<SInt16>{-1, 0, 3, 5, 15, 24, 33})
        EXPECT_EQ(Pixel(0xFFFF, 0xFFFF, 0xFFFF, depth), 0U) << depth;
}

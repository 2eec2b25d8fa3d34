// SPDX-License-Identifier: MIT
#include "src/image/PixelWriting.h"
#include "tests/image/ScriptedWorlds.h"

#include <gtest/gtest.h>

#include <cstddef>

TEST(PixelWriteState, KeepsItsFieldsInTheirOrder)
{
    constexpr std::size_t kPointer = sizeof(void*);
    EXPECT_EQ(offsetof(PixelWriteState, depth), 0U);
    EXPECT_EQ(offsetof(PixelWriteState, prepared), 1U);
    EXPECT_EQ(offsetof(PixelWriteState, rowBytes), 2U);
    EXPECT_EQ(offsetof(PixelWriteState, baseAddr), kPointer);
    EXPECT_EQ(offsetof(PixelWriteState, rowOffset), 2 * kPointer);
    EXPECT_EQ(offsetof(PixelWriteState, columnOffset), 2 * kPointer + 2);
    EXPECT_EQ(offsetof(PixelWriteState, bounds), 2 * kPointer + 4);
}

TEST(PrepareSetPixel, TakesWhatThePixelMapSays)
{
    test::ResetWorlds();
    test::Worlds().rowBytes = 48;
    char pixels = 0;
    PixMap map{};
    map.baseAddr = &pixels;
    map.bounds = {1, 2, 30, 40};
    map.pixelSize = 16;
    PixMapPtr master = &map;
    PixelWriteState state{};
    PrepareSetPixel(&master, &state);
    EXPECT_EQ(state.depth, 16);
    EXPECT_EQ(state.prepared, 1);
    EXPECT_EQ(state.rowBytes, 48);
    EXPECT_EQ(static_cast<void*>(state.baseAddr), &pixels);
    EXPECT_EQ(state.bounds.top, 1);
    EXPECT_EQ(state.bounds.left, 2);
    EXPECT_EQ(state.bounds.bottom, 30);
    EXPECT_EQ(state.bounds.right, 40);
}

TEST(PrepareSetPixel, StartsWithoutOffsets)
{
    test::ResetWorlds();
    PixMap map{};
    PixMapPtr master = &map;
    PixelWriteState state{};
    state.rowOffset = 7;
    state.columnOffset = 8;
    PrepareSetPixel(&master, &state);
    EXPECT_EQ(state.rowOffset, 0);
    EXPECT_EQ(state.columnOffset, 0);
}

TEST(PrepareSetPixel, KeepsTheLowByteOfTheDepth)
{
    test::ResetWorlds();
    PixMap map{};
    map.pixelSize = 0x0108;
    PixMapPtr master = &map;
    PixelWriteState state{};
    PrepareSetPixel(&master, &state);
    EXPECT_EQ(state.depth, 8);
}

TEST(PrepareSetPixel, TakesTheRowBytesWithTheirFlags)
{
    test::ResetWorlds();
    test::Worlds().rowBytes = 0x8030;
    PixMap map{};
    PixMapPtr master = &map;
    PixelWriteState state{};
    PrepareSetPixel(&master, &state);
    EXPECT_EQ(state.rowBytes, 0x8030);
}

TEST(PrepareSetBit, TakesAddressAndRowBytesWithoutFlags)
{
    char pixels = 0;
    const BitMap bits = {&pixels, static_cast<SInt16>(0xC012), {}};
    PixelWriteState state{};
    PrepareSetBit(&bits, &state);
    EXPECT_EQ(state.depth, 1);
    EXPECT_EQ(state.rowBytes, 0x12);
    EXPECT_EQ(static_cast<void*>(state.baseAddr), &pixels);
}

TEST(PrepareSetBit, LeavesTheRestToTheCaller)
{
    const BitMap bits = {nullptr, 2, {9, 9, 9, 9}};
    PixelWriteState state{};
    state.prepared = 5;
    state.rowOffset = 6;
    state.columnOffset = 7;
    state.bounds = {1, 2, 3, 4};
    PrepareSetBit(&bits, &state);
    EXPECT_EQ(state.prepared, 5);
    EXPECT_EQ(state.rowOffset, 6);
    EXPECT_EQ(state.columnOffset, 7);
    EXPECT_EQ(state.bounds.bottom, 3);
}

// SPDX-License-Identifier: MIT
#include "CopyReference.h"
#include "tests/toolbox/FailingOperations.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace
{

using reference::BitsOf;
using reference::MakeWorld;
using reference::OwnedWorld;
using reference::ValueAt;

constexpr Rect kBounds = {-2, 3, 8, 16}; // 13 wide, 10 high

OSErr ErrorOfNewGWorld(SInt16 depth, const Rect& bounds)
{
    GWorldPtr world = nullptr;
    const OSErr err = NewGWorld(&world, depth, &bounds, nullptr, nullptr, 0);
    EXPECT_EQ(world == nullptr, err != noErr);
    DisposeGWorld(world);
    return err;
}

class GWorldOfDepth : public testing::TestWithParam<int>
{
};

TEST_P(GWorldOfDepth, IsWhite)
{
    const OwnedWorld world = MakeWorld(GetParam(), kBounds);
    for (int v = kBounds.top; v < kBounds.bottom; ++v) {
        for (int h = kBounds.left; h < kBounds.right; ++h) {
            ASSERT_EQ(reference::ColorAt(BitsOf(world), v, h),
                      (reference::Components{255, 255, 255}));
        }
    }
}

TEST_P(GWorldOfDepth, DescribesItsPixels)
{
    const OwnedWorld world = MakeWorld(GetParam(), kBounds);
    const PixMap& map = **GetGWorldPixMap(world.get());
    EXPECT_EQ(map.pixelSize, GetParam());
    EXPECT_LT(map.rowBytes, 0) << "tells it from a bit map";
    EXPECT_EQ(map.bounds.left, kBounds.left);
    EXPECT_EQ(map.pixelType, GetParam() > 8 ? 16 : 0);
    EXPECT_EQ(map.cmpCount, GetParam() > 8 ? 3 : 1);
    EXPECT_EQ(map.cmpSize, GetParam() == 32 ? 8 : GetParam() == 16 ? 5 : GetParam());
    EXPECT_EQ(map.hRes, 72 << 16);
    EXPECT_EQ(map.pmTable != nullptr, GetParam() <= 8);
    EXPECT_GE(GetPixRowBytes(GetGWorldPixMap(world.get())), (13 * GetParam() + 7) / 8);
}

// Writing functions may touch one row more, and one pixel behind it.
TEST_P(GWorldOfDepth, HasASpareRowAndASparePixel)
{
    // Wide enough that rounding memory up does not make room for them.
    const OwnedWorld world = MakeWorld(GetParam(), {-2, 3, 8, 3 + 512});
    PixMapHandle const pixels = GetGWorldPixMap(world.get());
    ASSERT_EQ(GetPixRowBytes(pixels) % 64, 0);
    const int size = 11 * GetPixRowBytes(pixels) + 4;
    for (int i = 0; i < size; ++i) { // the address sanitizer looks on
        GetPixBaseAddr(pixels)[i] = static_cast<char>(i);
    }
    EXPECT_EQ(GetPixBaseAddr(pixels)[size - 1], static_cast<char>(size - 1));
}

INSTANTIATE_TEST_SUITE_P(AllDepths, GWorldOfDepth, testing::Values(1, 2, 4, 8, 16, 32));

TEST(GWorld, OfDepth0Has32Bits)
{
    const OwnedWorld world = MakeWorld(0, kBounds);
    EXPECT_EQ((*GetGWorldPixMap(world.get()))->pixelSize, 32);
}

TEST(GWorld, RefusesOtherDepths)
{
    for (const int depth : {-1, 3, 5, 15, 24, 64}) {
        EXPECT_EQ(ErrorOfNewGWorld(static_cast<SInt16>(depth), kBounds), paramErr) << depth;
    }
}

TEST(GWorld, RefusesEmptyBounds)
{
    EXPECT_EQ(ErrorOfNewGWorld(8, {5, 5, 5, 9}), paramErr);
    EXPECT_EQ(ErrorOfNewGWorld(8, {5, 9, 7, 9}), paramErr);
    EXPECT_EQ(ErrorOfNewGWorld(8, {7, 5, 5, 9}), paramErr);
}

TEST(GWorld, RefusesRowsOfMoreThan16Bits)
{
    EXPECT_EQ(ErrorOfNewGWorld(32, {0, 0, 1, 16383}), noErr);
    EXPECT_EQ(ErrorOfNewGWorld(32, {0, 0, 1, 16384}), paramErr);
    EXPECT_EQ(ErrorOfNewGWorld(16, {0, 0, 1, 32767}), noErr);
    EXPECT_EQ(ErrorOfNewGWorld(16, {0, -1, 1, 32767}), paramErr);
    EXPECT_EQ(ErrorOfNewGWorld(8, {0, -32768, 1, 32767}), noErr);
}

TEST(GWorld, KeepsRowBytesTooLongForTheRecord)
{
    const OwnedWorld wide = MakeWorld(32, {0, 0, 3, 16383});
    const OwnedWorld copy = MakeWorld(32, {0, 0, 3, 16383});
    EXPECT_EQ(GetPixRowBytes(GetGWorldPixMap(wide.get())), 65532);
    Ptr const lastPixel = GetPixBaseAddr(GetGWorldPixMap(wide.get())) + 3 * 65532 - 4;
    lastPixel[2] = 0x12;
    const Rect& bounds = BitsOf(wide)->bounds;
    CopyBits(BitsOf(wide), BitsOf(copy), &bounds, &bounds, srcCopy, nullptr);
    EXPECT_EQ(GetPixBaseAddr(GetGWorldPixMap(copy.get()))[3 * 65532 - 2], 0x12);
}

TEST(GWorld, CopiesTheColorTableItIsGiven)
{
    auto const table = reinterpret_cast<CTabHandle>(NewHandleClear(8 + 2 * 8));
    (*table)->ctSeed = GetCTSeed();
    (*table)->ctSize = 1;
    (*table)->ctTable[1] = {1, {0x1234, 0x5678, 0x9ABC}};
    const OwnedWorld world = MakeWorld(8, kBounds, table);
    (*table)->ctTable[1].rgb.red = 0;
    CTabHandle const copy = (*GetGWorldPixMap(world.get()))->pmTable;
    EXPECT_NE(copy, table);
    EXPECT_EQ((*copy)->ctSeed, (*table)->ctSeed);
    EXPECT_EQ((*copy)->ctSize, 1);
    EXPECT_EQ((*copy)->ctTable[1].rgb.red, 0x1234);
    DisposeHandle(reinterpret_cast<Handle>(table));
}

TEST(GWorld, StateOfPixelsCanBePutBack)
{
    const OwnedWorld world = MakeWorld(8, kBounds);
    PixMapHandle const pixels = GetGWorldPixMap(world.get());
    const GWorldFlags before = GetPixelsState(pixels);
    EXPECT_TRUE(LockPixels(pixels));
    EXPECT_EQ(GetPixelsState(pixels), before | pixelsLocked);
    SetPixelsState(pixels, before);
    EXPECT_EQ(GetPixelsState(pixels), before);
    LockPixels(pixels);
    UnlockPixels(pixels);
    EXPECT_EQ(GetPixelsState(pixels) & pixelsLocked, 0U);
}

TEST(GWorld, AWindowsPortHasAPixelMapToo)
{
    const Rect place = {10, 20, 15, 26};
    CGrafPtr port = nullptr;
    ASSERT_EQ(CreateWindowPort(&place, &port), noErr);
    PixMapHandle const pixels = GetGWorldPixMap(port);
    SInt32 rowBytes = 0;
    EXPECT_EQ(reinterpret_cast<UInt8*>(GetPixBaseAddr(pixels)), GetPortPixels(port, &rowBytes));
    EXPECT_EQ(GetPixRowBytes(pixels), rowBytes);
    EXPECT_EQ((*pixels)->bounds.right, 6);
    EXPECT_TRUE(LockPixels(pixels));
    DisposeWindowPort(port);
}

TEST(GWorld, NullHasNoPixels)
{
    EXPECT_EQ(GetGWorldPixMap(nullptr), nullptr);
    EXPECT_FALSE(LockPixels(nullptr));
    DisposeGWorld(nullptr);
}

TEST(GWorld, ThatIsMadeCurrentBringsItsDevice)
{
    const OwnedWorld world = MakeWorld(8, kBounds);
    SetGWorld(world.get(), nullptr);
    CGrafPtr port = nullptr;
    GDHandle device = nullptr;
    GetGWorld(&port, &device);
    EXPECT_EQ(port, world.get());
    EXPECT_NE(device, nullptr);
    SetGWorld(nullptr, nullptr);
}

TEST(GWorld, ThatIsDisposedOfIsNotCurrentAnyMore)
{
    OwnedWorld world = MakeWorld(8, kBounds);
    SetGWorld(world.get(), nullptr);
    world.reset();
    CGrafPtr port = nullptr;
    GDHandle device = nullptr;
    GetGWorld(&port, &device);
    EXPECT_EQ(port, nullptr);
    EXPECT_EQ(device, nullptr);
}

TEST(GWorld, IsNoWindow)
{
    EXPECT_EQ(GetWindowFromPort(MakeWorld(8, kBounds).get()), nullptr);
}

// A block that was let go and is taken again still comes white.
TEST(GWorld, IsWhiteWhereAnotherOneWas)
{
    const Rect large = {0, 0, 300, 400};
    OwnedWorld first = MakeWorld(32, large);
    reference::SetValueAt(BitsOf(first), 299, 399, 0);
    first.reset();
    EXPECT_EQ(ValueAt(BitsOf(MakeWorld(32, large)), 299, 399), 0xFFFFFFFFU);
}

TEST(GWorld, TheLedgerCountsThemAndNothingIsLeftBehind)
{
    const SInt32 worlds = CountLiveObjects(kLiveGWorlds);
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    {
        const OwnedWorld world = MakeWorld(8, kBounds);
        EXPECT_EQ(CountLiveObjects(kLiveGWorlds), worlds + 1);
        EXPECT_EQ(ErrorOfNewGWorld(32, {0, 0, 1, 20000}), paramErr);
        EXPECT_EQ(ErrorOfNewGWorld(8, {0, -32768, 1, 32767}), noErr);
    }
    EXPECT_EQ(CountLiveObjects(kLiveGWorlds), worlds);
    EXPECT_EQ(CountLiveObjects(kLiveHandles), handles);
}

TEST(GWorld, ThatCannotBeMadeTellsWhy)
{
    const FailingOperations failing(-123, "NewGWorld");
    EXPECT_EQ(ErrorOfNewGWorld(8, kBounds), -123);
}

TEST(GWorld, WithoutMemoryForItsTableIsNotMade)
{
    const FailingOperations failing(-123, "NewHandleClear");
    EXPECT_EQ(ErrorOfNewGWorld(8, kBounds), memFullErr);
}

TEST(GWorld, PixelsThatCannotBeLockedSaySo)
{
    const OwnedWorld world = MakeWorld(8, kBounds);
    const FailingOperations failing(-123, "LockPixels");
    EXPECT_FALSE(LockPixels(GetGWorldPixMap(world.get())));
    EXPECT_EQ(GetPixelsState(GetGWorldPixMap(world.get())) & pixelsLocked, 0U);
}

// Worlds so large that their memory is kept for later ones.
void MakeTwoLargeWorlds()
{
    constexpr Rect kLarge = {0, 0, 200, 300};
    const OwnedWorld first = MakeWorld(32, kLarge);
    const OwnedWorld second = MakeWorld(32, kLarge);
}

TEST(GWorld, CanStillBeMadeWhileTheProcessEnds)
{
#ifndef VORN_EMULATED // where the program cannot start itself anew
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // in a process that had none before
#endif
    EXPECT_EXIT(
        {
            std::atexit(MakeTwoLargeWorlds); // runs after what ends with the first worlds
            MakeTwoLargeWorlds();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace

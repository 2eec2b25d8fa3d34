// SPDX-License-Identifier: MIT
//
// Making graphics worlds and writing into them, on the toolbox as it is.
#include "src/image/GraphicsWorlds.h"
#include "src/image/PixelWriting.h"
#include "tests/support/ToolboxProbe.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace
{

// What is lost in such a scope is lost on purpose.
#ifdef __SANITIZE_ADDRESS__
using LossesAllowed = __lsan::ScopedDisabler;
#else
struct LossesAllowed {
};
#endif

using Bytes = std::vector<UInt8>;

constexpr Rect kBounds = {0, 0, 3, 16};

struct WorldDisposer {
    void operator()(CGrafPort* world) const { DisposeGWorld(world); }
};
using World = std::unique_ptr<CGrafPort, WorldDisposer>;

World MakeWorld(SInt16 depth, const Rect& bounds = kBounds)
{
    GWorldPtr world = nullptr;
    EXPECT_EQ(MakeGWorld(&bounds, depth, nullptr, 0, &world), 0);
    return World(world);
}

PixelWriteState Prepare(const World& world)
{
    PixelWriteState state{};
    PrepareSetPixel(GetGWorldPixMap(world.get()), &state);
    return state;
}

Bytes RowOf(const PixelWriteState& state, int row, int bytes)
{
    const UInt8* const first = state.baseAddr + ptrdiff_t{row} * state.rowBytes;
    return {first, first + bytes};
}

bool IsWhite(const World& world, SInt16 depth)
{
    const PixelWriteState state = Prepare(world);
    const int width = state.bounds.right - state.bounds.left;
    Bytes white(static_cast<size_t>(width * depth / 8), 0); // Index 0 is white.
    for (size_t i = 0; depth > 8 && i < white.size(); ++i) {
        const auto perPixel = static_cast<size_t>(depth / 8);
        white[i] = depth == 16 && i % perPixel == 0 ? 0x7F : 0xFF;
    }
    for (int row = 0; row < state.bounds.bottom - state.bounds.top; ++row) {
        Bytes actual = RowOf(state, row, static_cast<int>(white.size()));
        for (size_t i = 0; depth == 32 && i < actual.size(); i += 4)
            actual[i] = 0xFF; // No colour.
        if (actual != white)
            return false;
    }
    return true;
}

struct KeptWorld {
    KeptWorld() { GetGWorld(&port, &device); }
    ~KeptWorld() { SetGWorld(port, device); }
    CGrafPtr port = nullptr;
    GDHandle device = nullptr;
};

} // namespace

class EveryDepth : public testing::TestWithParam<SInt16>
{
};
INSTANTIATE_TEST_SUITE_P(Worlds, EveryDepth, testing::Values(1, 2, 4, 8, 16, 32),
                         testing::PrintToStringParamName());

TEST_P(EveryDepth, StartsWhite)
{
    EXPECT_TRUE(IsWhite(MakeWorld(GetParam()), GetParam()));
}

TEST_P(EveryDepth, IsMadeWhiteAgainOverWhatWasDrawn)
{
    const World world = MakeWorld(GetParam(), {-5, -7, 9, 9});
    const PixelWriteState state = Prepare(world);
    for (int i = 0; i < 14 * state.rowBytes; ++i)
        state.baseAddr[i] = 0x35;
    EXPECT_FALSE(IsWhite(world, GetParam()));
    EXPECT_EQ(BlankGWorld(world.get()), 0);
    EXPECT_TRUE(IsWhite(world, GetParam()));
}

TEST(RealWorlds, LeaveTheCurrentWorldAsItWas)
{
    const KeptWorld kept;
    const World current = MakeWorld(32);
    SetGWorld(current.get(), nullptr);
    CGrafPtr portBefore = nullptr;
    GDHandle deviceBefore = nullptr;
    GetGWorld(&portBefore, &deviceBefore);
    const World other = MakeWorld(8);
    CGrafPtr port = nullptr;
    GDHandle device = nullptr;
    GetGWorld(&port, &device);
    EXPECT_EQ(port, portBefore);
    EXPECT_EQ(device, deviceBefore);
}

TEST(RealWorlds, KeepTheirPixelsAsLockedAsTheyWere)
{
    const World world = MakeWorld(8);
    const PixMapHandle pixels = GetGWorldPixMap(world.get());
    EXPECT_EQ(GetPixelsState(pixels) & pixelsLocked, 0U);
    LockPixels(pixels);
    BlankGWorld(world.get());
    EXPECT_NE(GetPixelsState(pixels) & pixelsLocked, 0U);
}

TEST(RealWorlds, AreMadeAndBlankedInThisOrder)
{
    test::ToolboxProbe probe;
    const World world = MakeWorld(16);
    EXPECT_THAT(
        probe.Calls({"NewGWorld", "GetGWorld", "GetPixelsState", "LockPixels", "SetGWorld",
                     "BackColor", "GetPortBounds", "EraseRect", "SetPixelsState", "DisposeGWorld"}),
        testing::ElementsAre("NewGWorld", "GetGWorld", "GetPixelsState", "LockPixels", "SetGWorld",
                             "BackColor", "GetPortBounds", "EraseRect", "SetPixelsState",
                             "SetGWorld"));
}

TEST(RealWorlds, PassTheToolboxsErrorOnAndLoseNothing)
{
    const SInt32 before = CountLiveObjects(kLiveGWorlds);
    test::ToolboxProbe probe;
    probe.Fail("NewGWorld", memFullErr);
    GWorldPtr world = nullptr;
    EXPECT_EQ(MakeGWorld(&kBounds, 16, nullptr, 0, &world), memFullErr);
    EXPECT_EQ(CountLiveObjects(kLiveGWorlds), before);
}

TEST(RealWorlds, RefuseDepthsThatThereAreNot)
{
    GWorldPtr world = nullptr;
    EXPECT_EQ(MakeGWorld(&kBounds, 7, nullptr, 0, &world), paramErr);
    EXPECT_EQ(world, nullptr);
}

TEST(RealWorlds, LoseAWorldWhosePixelsCannotBeLocked)
{
    const SInt32 before = CountLiveObjects(kLiveGWorlds);
    test::ToolboxProbe probe;
    probe.Fail("LockPixels", memFullErr);
    GWorldPtr world = nullptr;
    [[maybe_unused]] const LossesAllowed losses;
    EXPECT_EQ(MakeGWorld(&kBounds, 16, nullptr, 0, &world), -1);
    EXPECT_EQ(world, nullptr);
    EXPECT_EQ(CountLiveObjects(kLiveGWorlds), before + 1);
}

TEST(PixelWritingIntoWorlds, TakesAddressRowBytesAndBoundsFromTheWorld)
{
    const World world = MakeWorld(16, {2, 3, 7, 10});
    const PixelWriteState state = Prepare(world);
    EXPECT_EQ(state.depth, 16);
    EXPECT_EQ(state.rowBytes, GetPixRowBytes(GetGWorldPixMap(world.get())));
    EXPECT_EQ(state.bounds.top, 2);
    EXPECT_EQ(state.bounds.right, 10);
}

TEST(PixelWritingIntoWorlds, HasRoomForTheRowAtTheBottom)
{
    const World shallow = MakeWorld(16);
    PixelWriteState state = Prepare(shallow);
    const Bytes samples(16 * 3 + 1, 0x80);
    RGBSampleTo16bitGWorld(&state, samples.data(), 16, 3, 0);
    EXPECT_EQ(RowOf(state, 3, 4), (Bytes{0x42, 0x10, 0x42, 0x10}));
    const World deep = MakeWorld(32);
    state = Prepare(deep);
    RGBSampleTo32bitGWorld(&state, samples.data(), 16, 3, 0);
    EXPECT_EQ(RowOf(state, 3, 4), (Bytes{0x80, 0x80, 0x80, 0x80}));
}

TEST(PixelWritingIntoWorlds, HasRoomForTheByteAtTheRight)
{
    const World world = MakeWorld(8);
    PixelWriteState state = Prepare(world);
    SetPixMapByteIndex(&state, &state.bounds, {2, 16}, 0x99);
    EXPECT_EQ(RowOf(state, 2, 17).back(), 0x99);
}

TEST(PixelWritingIntoWorlds, AsksTheWorldsDeviceForIndices)
{
    const KeptWorld kept;
    const World world = MakeWorld(8);
    SetGWorld(world.get(), nullptr);
    const RGBColor white = {0xFFFF, 0xFFFF, 0xFFFF};
    const RGBColor black = {0, 0, 0};
    EXPECT_EQ(RGBToDirectPixel(&white, 8), 0U);
    EXPECT_EQ(RGBToDirectPixel(&black, 8), 255U);
}

// What a decoder writes is what is seen on the page.
TEST(PixelWritingIntoWorlds, ShowsOnAPage)
{
    const KeptWorld kept;
    const World world = MakeWorld(16);
    PixelWriteState state = Prepare(world);
    const Bytes red = {0xFF, 0, 0};
    RGBSampleTo16bitGWorld(&state, red.data(), 1, 1, 0);
    CGrafPtr page = nullptr;
    ASSERT_EQ(CreateWindowPort(&kBounds, &page), 0);
    SetGWorld(page, nullptr);
    CopyBits(reinterpret_cast<const BitMap*>(*GetGWorldPixMap(world.get())),
             reinterpret_cast<const BitMap*>(*GetGWorldPixMap(page)), &kBounds, &kBounds, srcCopy,
             nullptr);
    SInt32 rowBytes = 0;
    const UInt8* const pixel = GetPortPixels(page, &rowBytes) + rowBytes;
    EXPECT_EQ((Bytes{pixel[1], pixel[2], pixel[3]}), red);
    EXPECT_EQ((Bytes{pixel[5], pixel[6], pixel[7]}), (Bytes{0xFF, 0xFF, 0xFF}));
    SetGWorld(nullptr, nullptr);
    DisposeWindowPort(page);
}

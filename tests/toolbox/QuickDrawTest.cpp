// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/QuickDraw.h"
#include "tests/toolbox/FailingOperations.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"
#include "toolbox/quickdraw/Drawing.h"
#include "toolbox/quickdraw/PortRegistry.h"
#include "toolbox/threads/Threads.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <string>

static bool operator==(const Rect& a, const Rect& b)
{
    return EqualRect(&a, &b) != 0;
}

namespace
{

constexpr RGBColor kBlack = {0, 0, 0};
constexpr RGBColor kSomeColor = {0x12FF, 0x34FF, 0x56FF};

struct DisposePort {
    void operator()(CGrafPtr port) const { DisposeWindowPort(port); }
};
using OwnedPort = std::unique_ptr<CGrafPort, DisposePort>;

OwnedPort MakePort(const Rect& bounds)
{
    CGrafPtr port = nullptr;
    EXPECT_EQ(CreateWindowPort(&bounds, &port), noErr);
    return OwnedPort(port);
}

class QuickDraw : public testing::Test
{
protected:
    ~QuickDraw() override { SetPort(nullptr); }

    std::array<UInt8, 4> PixelAt(SInt16 v, SInt16 h) const
    {
        SInt32 rowBytes = 0;
        const UInt8* pixels = GetPortPixels(port.get(), &rowBytes);
        const UInt8* pixel = pixels + v * rowBytes + h * 4;
        return {pixel[0], pixel[1], pixel[2], pixel[3]};
    }

    int CountPixelsOtherThanWhite() const
    {
        int count = 0;
        for (SInt16 v = 0; v < 40; ++v) {
            for (SInt16 h = 0; h < 50; ++h) {
                count += PixelAt(v, h) != std::array<UInt8, 4>{255, 255, 255, 255} ? 1 : 0;
            }
        }
        return count;
    }

    OwnedPort port = MakePort({10, 20, 50, 70}); // 50 wide, 40 high
};

struct OwnedRegion {
    RgnHandle handle = NewRgn();

    OwnedRegion() = default;
    explicit OwnedRegion(const Rect& rect) { RectRgn(handle, &rect); }
    ~OwnedRegion() { DisposeRgn(handle); }
    OwnedRegion(const OwnedRegion&) = delete;
    OwnedRegion& operator=(const OwnedRegion&) = delete;

    Rect TheRect() const
    {
        EXPECT_EQ(CountRegionRects(handle), 1);
        return GetRegionRect(handle, 0);
    }
};

TEST_F(QuickDraw, ANewPortIsWhite)
{
    EXPECT_EQ(CountPixelsOtherThanWhite(), 0);
}

TEST_F(QuickDraw, AResizedPortKeepsWhatStillFitsAndIsWhiteBeside)
{
    toolbox::PaintRect(*port, {0, 0, 40, 50}, kSomeColor, nullptr);
    TakeDirtyRegion(port.get(), nullptr);
    const Rect larger = {7, 8, 7 + 60, 8 + 30};
    EXPECT_EQ(ResizeWindowPort(port.get(), &larger), noErr);
    Rect bounds;
    EXPECT_EQ(*GetPortBounds(port.get(), &bounds), (Rect{0, 0, 60, 30}));
    EXPECT_EQ(PixelAt(39, 29), (std::array<UInt8, 4>{0, 0x12, 0x34, 0x56}));
    EXPECT_EQ(PixelAt(40, 29), (std::array<UInt8, 4>{255, 255, 255, 255}));
    const OwnedRegion dirty;
    EXPECT_TRUE(TakeDirtyRegion(port.get(), dirty.handle));
    EXPECT_EQ(dirty.TheRect(), (Rect{0, 0, 60, 30}));
}

TEST_F(QuickDraw, CopiesFindAResizedPortByItsNewPixels)
{
    const Rect larger = {0, 0, 60, 70};
    EXPECT_EQ(ResizeWindowPort(port.get(), &larger), noErr);
    SInt32 rowBytes = 0;
    EXPECT_EQ(toolbox::FindPortOfPixels(GetPortPixels(port.get(), &rowBytes)), port.get());
}

TEST_F(QuickDraw, APortThatCannotBeResizedStaysAsItWas)
{
    const Rect empty = {0, 0, 0, 10};
    EXPECT_EQ(ResizeWindowPort(port.get(), &empty), paramErr);
    Rect bounds;
    EXPECT_EQ(*GetPortBounds(port.get(), &bounds), (Rect{0, 0, 40, 50}));
}

TEST_F(QuickDraw, RowsStartAtMultiplesOf64Bytes)
{
    SInt32 rowBytes = 0;
    const UInt8* pixels = GetPortPixels(port.get(), &rowBytes);
    EXPECT_EQ(rowBytes, 256); // 50 pixels are 200 bytes
    EXPECT_EQ(reinterpret_cast<uintptr_t>(pixels) % 64, 0u);
}

TEST_F(QuickDraw, APortsOwnCoordinatesStartAtItsTopLeft)
{
    Rect bounds{};
    EXPECT_EQ(GetPortBounds(port.get(), &bounds), &bounds);
    EXPECT_EQ(bounds, (Rect{0, 0, 40, 50}));
}

TEST_F(QuickDraw, ALocalPointBecomesGlobalByThePortsPlaceOnTheScreen)
{
    SetPort(port.get());
    Point point = {1, 2};
    LocalToGlobal(&point);
    EXPECT_EQ(point.v, 11);
    EXPECT_EQ(point.h, 22);
}

TEST_F(QuickDraw, AWindowIsKnownByItsPort)
{
    EXPECT_EQ(GetWindowFromPort(port.get()), port.get());
    EXPECT_EQ(GetWindowFromPort(nullptr), nullptr);
}

TEST_F(QuickDraw, RefusesEmptyBounds)
{
    const Rect empty = {5, 5, 5, 9};
    CGrafPtr made = port.get();
    EXPECT_EQ(CreateWindowPort(&empty, &made), paramErr);
    EXPECT_EQ(made, nullptr);
}

TEST_F(QuickDraw, ThereIsNoCurrentPortBeforeASetPort)
{
    CGrafPtr current = port.get();
    GetPort(&current);
    EXPECT_EQ(current, nullptr);
}

TEST_F(QuickDraw, APortThatIsDisposedOfIsNotCurrentAnyMore)
{
    SetPort(port.get());
    port.reset();
    CGrafPtr current = nullptr;
    GetPort(&current);
    EXPECT_EQ(current, nullptr);
}

TEST_F(QuickDraw, PortAndDeviceAreSetTogether)
{
    GDHandle const someDevice = reinterpret_cast<GDHandle>(&port);
    SetGWorld(port.get(), someDevice);
    CGrafPtr current = nullptr;
    GDHandle device = nullptr;
    GetGWorld(&current, &device);
    EXPECT_EQ(current, port.get());
    EXPECT_EQ(device, someDevice);
    SetGWorld(nullptr, nullptr);
}

void* MakePortNullAndTellWhatItWas(void* outPort)
{
    GetPort(static_cast<CGrafPtr*>(outPort));
    SetPort(nullptr);
    return nullptr;
}

TEST_F(QuickDraw, TheCurrentPortBelongsToTheThreadAndIsInherited)
{
    SetPort(port.get());
    CGrafPtr inherited = nullptr;
    ThreadID thread = kNoThreadID;
    ASSERT_EQ(NewThread(kCooperativeThread, NewThreadEntryUPP(MakePortNullAndTellWhatItWas),
                        &inherited, 0, 0, nullptr, &thread),
              noErr);
    YieldToAnyThread();
    CGrafPtr current = nullptr;
    GetPort(&current);
    EXPECT_EQ(inherited, port.get());
    EXPECT_EQ(current, port.get());
}

TEST_F(QuickDraw, OffsetWrapsAt16Bits)
{
    Rect rect = {32767, 10, 5, 20};
    OffsetRect(&rect, -15, 2);
    EXPECT_EQ(rect, (Rect{-32767, -5, 7, 5}));
}

TEST_F(QuickDraw, RectsAreEqualInAllFourSides)
{
    const Rect rect = {1, 2, 3, 4};
    EXPECT_TRUE(rect == (Rect{1, 2, 3, 4}));
    EXPECT_FALSE(rect == (Rect{0, 2, 3, 4}));
    EXPECT_FALSE(rect == (Rect{1, 0, 3, 4}));
    EXPECT_FALSE(rect == (Rect{1, 2, 0, 4}));
    EXPECT_FALSE(rect == (Rect{1, 2, 3, 0}));
}

Rect Mapped(Rect rect, const Rect& from, const Rect& to)
{
    MapRect(&rect, &from, &to);
    return rect;
}

TEST_F(QuickDraw, MappingMovesAndScales)
{
    EXPECT_EQ(Mapped({10, 20, 20, 40}, {0, 0, 100, 100}, {5, 5, 205, 55}), (Rect{25, 15, 45, 25}));
    EXPECT_EQ(Mapped({0, 0, 100, 100}, {0, 0, 100, 100}, {5, 5, 205, 55}), (Rect{5, 5, 205, 55}));
}

TEST_F(QuickDraw, MappingRoundsToTheNearest)
{
    EXPECT_EQ(Mapped({1, 1, 2, 2}, {0, 0, 3, 4}, {0, 0, 4, 3}), (Rect{1, 1, 3, 2}));
    EXPECT_EQ(Mapped({-1, -1, 2, 2}, {0, 0, 3, 4}, {0, 0, 4, 3}), (Rect{-1, -1, 3, 2}));
}

TEST_F(QuickDraw, MappingBetweenRectsOfOneSizeOnlyMoves)
{
    EXPECT_EQ(Mapped({1, 2, 3, 4}, {10, 10, 17, 17}, {0, 20, 7, 27}), (Rect{-9, 12, -7, 14}));
}

TEST_F(QuickDraw, MappingFromARectOfNoSizeOnlyMoves)
{
    EXPECT_EQ(Mapped({1, 2, 3, 4}, {1, 1, 1, 1}, {5, 5, 9, 9}), (Rect{5, 6, 7, 8}));
}

TEST_F(QuickDraw, ARegionOfAnEmptyRectIsEmpty)
{
    const OwnedRegion region({1, 2, 3, 4});
    const Rect empty = {9, 9, 3, 12};
    RectRgn(region.handle, &empty);
    EXPECT_EQ(CountRegionRects(region.handle), 0);
}

TEST_F(QuickDraw, ANewPortsClipIsTheWidestRect)
{
    SetPort(port.get());
    const OwnedRegion clip;
    GetClip(clip.handle);
    EXPECT_EQ(clip.TheRect(), (Rect{-32768, -32768, 32767, 32767}));
}

TEST_F(QuickDraw, TheClipIsCopiedInAndOut)
{
    SetPort(port.get());
    const Rect other = {0, 0, 1, 1};
    const OwnedRegion in({5, 6, 7, 8});
    SetClip(in.handle);
    RectRgn(in.handle, &other);
    const OwnedRegion out;
    GetClip(out.handle);
    EXPECT_EQ(out.TheRect(), (Rect{5, 6, 7, 8}));
}

TEST_F(QuickDraw, ACopyOfARegionIsItsOwn)
{
    const OwnedRegion original({5, 6, 7, 8});
    RgnHandle copy = toolbox::CopyRegion(original.handle);
    const Rect other = {0, 0, 1, 1};
    RectRgn(original.handle, &other);
    EXPECT_EQ(GetRegionRect(copy, 0), (Rect{5, 6, 7, 8}));
    DisposeRgn(copy);
    EXPECT_EQ(toolbox::CopyRegion(nullptr), nullptr);
}

TEST_F(QuickDraw, PixelsAreBigEndianWords)
{
    toolbox::PaintRect(*port, {3, 4, 4, 5}, kSomeColor, nullptr);
    EXPECT_EQ(PixelAt(3, 4), (std::array<UInt8, 4>{0, 0x12, 0x34, 0x56}));
    EXPECT_EQ(toolbox::PixelAddress(*port, 3, 4)[1], 0x12);
}

TEST_F(QuickDraw, PaintingStaysInsideThePort)
{
    toolbox::PaintRect(*port, {-100, -100, 2, 3}, kBlack, nullptr);
    toolbox::PaintRect(*port, {38, 47, 100, 100}, kBlack, nullptr);
    EXPECT_EQ(CountPixelsOtherThanWhite(), 2 * 3 + 2 * 3);
}

TEST_F(QuickDraw, PaintingIsClippedByThePortsClipAndTheCallers)
{
    SetPort(port.get());
    const OwnedRegion portClip({0, 0, 10, 10});
    SetClip(portClip.handle);
    const OwnedRegion clip({5, 5, 20, 20});
    toolbox::PaintRect(*port, {0, 0, 40, 50}, kBlack, clip.handle);
    EXPECT_EQ(CountPixelsOtherThanWhite(), 25);
    EXPECT_EQ(PixelAt(9, 9)[1], 0);
}

TEST_F(QuickDraw, TheDirtyRegionIsWhatWasDrawnToAndIsTakenOnce)
{
    toolbox::PaintRect(*port, {30, 40, 100, 100}, kBlack, nullptr);
    const OwnedRegion dirty;
    EXPECT_TRUE(TakeDirtyRegion(port.get(), dirty.handle));
    EXPECT_EQ(dirty.TheRect(), (Rect{30, 40, 40, 50}));
    EXPECT_FALSE(TakeDirtyRegion(port.get(), dirty.handle));
    EXPECT_EQ(CountRegionRects(dirty.handle), 0);
}

TEST_F(QuickDraw, NothingVisibleIsNoRectAtAll)
{
    EXPECT_TRUE(toolbox::VisibleRects(*port, {50, 0, 60, 10}, nullptr).empty());
    EXPECT_TRUE(toolbox::VisibleRects(*port, {10, 10, 10, 20}, nullptr).empty());
}

// Whatever is painted where: a pixel changes exactly when all four limits allow it.
TEST_F(QuickDraw, PaintingAndDirtyRegionAgreeForRandomRects)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> coordinate(-10, 60);
    const auto randomRect = [&] {
        const auto any = [&] { return static_cast<SInt16>(coordinate(random)); };
        return Rect{any(), any(), any(), any()};
    };
    for (int round = 0; round < 200; ++round) {
        toolbox::PaintRect(*port, {0, 0, 40, 50}, {0xFFFF, 0xFFFF, 0xFFFF}, nullptr);
        TakeDirtyRegion(port.get(), nullptr);
        const Rect painted = randomRect();
        const Rect limit = randomRect();
        const OwnedRegion clip(limit);
        toolbox::PaintRect(*port, painted, kBlack, clip.handle);
        const auto contains = [](const Rect& rect, SInt16 v, SInt16 h) {
            return v >= rect.top && v < rect.bottom && h >= rect.left && h < rect.right;
        };
        const OwnedRegion dirty;
        TakeDirtyRegion(port.get(), dirty.handle);
        const Rect touched = GetRegionRect(dirty.handle, 0); // empty if there is none
        for (SInt16 v = 0; v < 40; ++v) {
            for (SInt16 h = 0; h < 50; ++h) {
                const bool expected = contains(painted, v, h) && contains(limit, v, h);
                ASSERT_EQ(PixelAt(v, h)[1] == 0, expected) << "round " << round;
                ASSERT_EQ(contains(touched, v, h), expected) << "round " << round;
            }
        }
    }
}

TEST_F(QuickDraw, ARegionThatCannotBeMadeIsNull)
{
    const FailingOperations failing(-123, "NewRgn");
    EXPECT_EQ(NewRgn(), nullptr);
}

TEST_F(QuickDraw, APortThatCannotBeMadeTellsWhy)
{
    const FailingOperations failing(-123, "CreateWindowPort");
    const Rect bounds = {0, 0, 5, 5};
    CGrafPtr made = port.get();
    EXPECT_EQ(CreateWindowPort(&bounds, &made), -123);
    EXPECT_EQ(made, nullptr);
}

TEST_F(QuickDraw, TheLedgerCountsPortsAndRegions)
{
    const SInt32 ports = CountLiveObjects(kLivePorts);
    const SInt32 regions = CountLiveObjects(kLiveRegions);
    {
        const OwnedPort second = MakePort({0, 0, 1, 1});
        const OwnedRegion region;
        EXPECT_EQ(CountLiveObjects(kLivePorts), ports + 1);
        EXPECT_EQ(CountLiveObjects(kLiveRegions), regions + 1);
    }
    EXPECT_EQ(CountLiveObjects(kLivePorts), ports);
    EXPECT_EQ(CountLiveObjects(kLiveRegions), regions);
}

} // namespace

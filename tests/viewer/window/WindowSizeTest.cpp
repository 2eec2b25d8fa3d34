// SPDX-License-Identifier: MIT
//
// How large a window is, and what has it for itself, in a real X server.
#include "tests/viewer/window/RunningWindow.h"
#include "tests/viewer/window/ShownPage.h"
#include "toolbox/Types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr int kCaption = 40;
constexpr int kControllerRows = 17;

class WindowSize : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!HiddenScreen::IsPossible()) {
            GTEST_SKIP() << "Xvfb, xdotool or import is missing";
        }
    }
};

// The part of the screen that is not black.
Rect WindowPart(const Screenshot& shot)
{
    Rect part = {INT16_MAX, INT16_MAX, 0, 0};
    for (SInt16 v = 0; v < shot.height; ++v) {
        for (SInt16 h = 0; h < shot.width; ++h) {
            if (shot.At(h, v) != 0) {
                part = {std::min(part.top, v), std::min(part.left, h), SInt16(v + 1),
                        std::max(part.right, SInt16(h + 1))};
            }
        }
    }
    return part;
}

TEST_F(WindowSize, ASingleObjectGetsAWindowOfItsSizeOnceItIsShown)
{
    constexpr int kZoom = 2;
    constexpr int kLeastWidth = 480;
    const HiddenScreen screen;
    RunningWindow window(screen, {Clip("silent.mpg")}, "dummy", RunningWindow::Size::kOwn);
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        const Rect part = WindowPart(shot);
        return part.right - part.left == kLeastWidth &&
               part.bottom - part.top == kZoom * 120 + kControllerRows + 2 * kMargin + kCaption &&
               shot.At(part.left + kMargin + kZoom * 160 - 10, part.top + kMargin + 150) !=
                   kBackground;
    }));
}

TEST_F(WindowSize, SeveralObjectsGetAWindowOfTheUsualSize)
{
    const HiddenScreen screen;
    RunningWindow window(screen, {Clip("silent.mpg"), Clip("mpeg1.mpg")}, "dummy",
                         RunningWindow::Size::kOwn);
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        const Rect part = WindowPart(shot);
        return shot.At(part.left + kMargin + 30, part.top + kMargin + 100) != kBackground;
    }));
    const Rect part = WindowPart(window.LookAtRest());
    EXPECT_EQ(part.right - part.left, 800);
    EXPECT_EQ(part.bottom - part.top, 600);
}

// Without a window manager nobody makes a window as large as the screen.
TEST_F(WindowSize, AWindowManagerGivesItTheWholeScreenAndTakesItBack)
{
    if (std::system("command -v openbox >/dev/null") != 0) {
        GTEST_SKIP() << "openbox is missing";
    }
    const HiddenScreen managed;
    ASSERT_TRUE(managed.StartManager());
    RunningWindow window(managed, {"--size", "500x400", Clip("silent.mpg")});
    // Wherever the manager puts it.
    const auto isSmall = [](const Screenshot& shot) {
        const Rect part = WindowPart(shot);
        return part.right - part.left < 520 && part.bottom - part.top < 450 &&
               shot.At((part.left + part.right) / 2, part.bottom - 25) == kBackground;
    };
    const auto fillsTheScreen = [](const Screenshot& shot) {
        return shot.At(5, 5) == 0x181818 && shot.At(990, 300) == 0x181818 &&
               shot.At(500, 698) == 0xDDDDDD && shot.At(100, 300) != 0;
    };
    ASSERT_TRUE(window.WaitUntil(isSmall));
    window.Do("search --onlyvisible --name vornview windowactivate --sync key F11");
    EXPECT_TRUE(window.WaitUntil(fillsTheScreen));
    window.Do("key Escape");
    EXPECT_TRUE(window.WaitUntil(isSmall));
}

// A movie of upright bars, the first red and the last turquoise, stands there above its controller.
bool HasMovieAt(const Screenshot& shot, int left, int top, int width, int height)
{
    const int low = top + height * 3 / 4;
    const int right = left + width;
    const bool hasEdges = (shot.At(left + 3, low) >> 16) > 0xE0 &&
                          (shot.At(right - 4, low) & 0xFFFF) > 0xE0E0 &&
                          shot.At(left + 1, top + height + 8) == 0xDDDDDD;
    return hasEdges && shot.At(left - 3, low) == kBackground &&
           shot.At(right + 3, low) == kBackground && shot.At(left + 3, top - 3) == kBackground;
}

TEST_F(WindowSize, ASingleMovieGrowsAndShrinksWithItsWindowInTheMiddle)
{
    const HiddenScreen screen;
    RunningWindow window(screen, {Clip("mpeg1.mpg")}, "dummy", RunningWindow::Size::kOwn);
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        const Rect part = WindowPart(shot);
        return HasMovieAt(shot, part.left + (480 - 352) / 2, part.top + kMargin, 352, 240);
    }));
    const std::string resize = "search --onlyvisible --name vornview windowmove 0 0 windowsize ";
    window.Do(resize + "900 600");
    EXPECT_TRUE(window.WaitUntil(
        [](const Screenshot& shot) { return HasMovieAt(shot, 75, kMargin, 749, 511); }));
    window.Do(resize + "300 400");
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        return HasMovieAt(shot, kMargin, (400 - 183 - kControllerRows - kCaption) / 2, 268, 183);
    }));
}

} // namespace

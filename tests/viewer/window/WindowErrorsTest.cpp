// SPDX-License-Identifier: MIT
//
// What a user sees of objects that cannot be shown, in a real X server.
#include "tests/viewer/window/RunningWindow.h"
#include "tests/viewer/window/ShownPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using testing::HasSubstr;

constexpr int kSecondLeft = kMargin + 176 + 20;
constexpr int kErrorInk = 0xA03A32;

class WindowErrors : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!HiddenScreen::IsPossible()) {
            GTEST_SKIP() << "Xvfb, xdotool or import is missing";
        }
    }
    const TestFolder folder;
    const std::string good = std::string(VORN_CLIPS) + "/silent.mpg";
};

// In the frame of an object without a size.
bool TellsErrorInFirstPlace(const Screenshot& shot)
{
    for (int y = kMargin; y < kMargin + 120; ++y) {
        for (int x = kMargin; x < kMargin + 160; ++x) {
            if (shot.At(x, y) == kErrorInk) {
                return true;
            }
        }
    }
    return false;
}

bool ShowsMovieInSecondPlace(const Screenshot& shot)
{
    const int pixel = shot.At(kSecondLeft + 10, kMargin + 80);
    return (pixel >> 16) > 0xE0 && (pixel & 0xFFFF) < 0x2020;
}

void ExpectErrorBesideMovie(const std::string& bad, const std::string& good)
{
    const HiddenScreen screen;
    RunningWindow window(screen, {bad, good});
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        return TellsErrorInFirstPlace(shot) && ShowsMovieInSecondPlace(shot);
    }));
    window.Do("key q");
    EXPECT_EQ(window.WaitForEnd().status, 1);
}

TEST_F(WindowErrors, WhatIsNoMovieSaysSoInItsPlaceAndTheRestGoesOn)
{
    ExpectErrorBesideMovie(folder.Write("bad.mpg", std::string(3000, 'x')), good);
}

TEST_F(WindowErrors, WhatIsMissingSaysSoInItsPlaceAndTheRestGoesOn)
{
    ExpectErrorBesideMovie(folder.Path("missing.mpg"), good);
}

// It would stay until the user closes it.
TEST_F(WindowErrors, NoWindowIsOpenedIfNothingThatWasNamedIsThere)
{
    const HiddenScreen screen;
    RunningWindow window(screen, {folder.Path("one.mpg"), folder.Path("other.gif")});
    const RunningWindow::Result result = window.WaitForEnd();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("one.mpg: No such file or directory"));
    EXPECT_THAT(result.err, HasSubstr("other.gif: No such file or directory"));
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 2) << result.err;
    EXPECT_EQ(result.report["objects"].size(), 2U);
}

} // namespace

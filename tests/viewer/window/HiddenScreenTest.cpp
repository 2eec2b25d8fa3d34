// SPDX-License-Identifier: MIT
#include "tests/viewer/TestFiles.h"
#include "tests/viewer/window/RunningWindow.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

// A server that begins anew turns away who comes meanwhile, and puts the pointer in the middle.
TEST(HiddenScreen, StaysAsItIsWhenItsLastClientLeaves)
{
    if (!HiddenScreen::IsPossible()) {
        GTEST_SKIP() << "Xvfb, xdotool or import is missing";
    }
    const HiddenScreen screen;
    const TestFolder folder;
    const std::string tool = "DISPLAY=" + screen.Name() + " xdotool ";
    ASSERT_EQ(std::system((tool + "mousemove 12 34").c_str()), 0);
    ASSERT_EQ(std::system((tool + "getmouselocation > " + folder.Path("place")).c_str()), 0);
    EXPECT_TRUE(folder.Read("place").starts_with("x:12 y:34 ")) << folder.Read("place");
}

} // namespace

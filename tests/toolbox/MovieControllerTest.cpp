// SPDX-License-Identifier: MIT
//
// The standard controller: its parts and the events it takes.
#include "tests/toolbox/OpenedMovie.h"

namespace
{

TEST(MovieController, IsTheBoxAndABarOfSixteenPixels)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    Rect bounds;
    MCGetControllerBoundsRect(page.controller, &bounds);
    EXPECT_EQ(bounds.right - bounds.left, 352);
    EXPECT_EQ(bounds.bottom - bounds.top, 240 + 16);
}

TEST(MovieController, LeavesEventsOutsideItToOthers)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    EXPECT_FALSE(page.Mouse(mouseDown, 400, 300));
    EXPECT_FALSE(page.Mouse(mouseUp, 400, 300));
    EXPECT_FALSE(page.Key('x'));
    EXPECT_FALSE(page.Statistics().playing);
}

TEST(MovieController, SilencesAndRestoresTheSoundByItsButton)
{
    OpenedMovie page(Clip("sound.mp2"), "sound.mp2");
    page.OpenAll();
    const Rect bar = page.Bar();
    EXPECT_TRUE(page.Mouse(mouseDown, bar.left + 8, bar.top + 8));
    page.ClickPlay();
    page.PlayToEnd();
    ASSERT_FALSE(page.sound.empty());
    EXPECT_TRUE(std::all_of(page.sound.begin(), page.sound.end(), [](SInt16 s) { return s == 0; }));
}

} // namespace

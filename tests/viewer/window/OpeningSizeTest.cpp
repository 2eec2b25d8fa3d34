// SPDX-License-Identifier: MIT
//
// How large a window is made for a single object.
#include "viewer/window/OpeningSize.h"

#include <gtest/gtest.h>

namespace
{

using viewer::AreaSize;
using viewer::OpeningSize;

constexpr AreaSize kScreen = {1920, 1080};
constexpr int kAcross = 2 * 16;
constexpr int kDown = 2 * 16 + 40;

OpeningSize For(AreaSize natural, AreaSize screen = kScreen, bool mayScale = true,
                SInt16 rowsOfController = 0)
{
    return OpeningSizeFor(natural, rowsOfController, mayScale, screen, viewer::StyleWithText());
}

TEST(OpeningSize, ASmallPictureIsEnlargedByAWholeNumberUntilItIsComfortable)
{
    const OpeningSize opening = For({300, 200});
    EXPECT_EQ(opening.zoom, 2);
    EXPECT_EQ(opening.window.width, 2 * 300 + kAcross);
    EXPECT_EQ(opening.window.height, 2 * 200 + kDown);
}

TEST(OpeningSize, AComfortablePictureKeepsItsSize)
{
    const OpeningSize opening = For({352, 257});
    EXPECT_EQ(opening.zoom, 1);
    EXPECT_EQ(opening.window.height, 257 + kDown);
    EXPECT_EQ(For({720, 593}).window.width, 720 + kAcross);
}

TEST(OpeningSize, OnASmallScreenItIsEnlargedLess)
{
    EXPECT_EQ(For({300, 200}, {600, 400}).zoom, 1);
}

TEST(OpeningSize, AnIconIsEnlargedALittleInAWindowThatCanBeUsed)
{
    const OpeningSize opening = For({16, 16});
    EXPECT_EQ(opening.zoom, 4);
    EXPECT_EQ(opening.window.width, 480);
    EXPECT_EQ(opening.window.height, 270);
}

TEST(OpeningSize, AHugePictureIsSeenAsAWholeOnFourFifthsOfTheScreen)
{
    const OpeningSize opening = For({6000, 4000});
    EXPECT_EQ(opening.window.height, 864);
    EXPECT_NEAR(opening.zoom, (864.0 - kDown) / 4000, 1e-6);
    EXPECT_EQ(opening.window.width, 1188 + kAcross);
}

TEST(OpeningSize, TheControllerOfAnEnlargedMovieKeepsItsHeight)
{
    const OpeningSize opening = For({160, 137}, kScreen, true, 17);
    EXPECT_EQ(opening.zoom, 2);
    EXPECT_EQ(opening.window.height, 2 * 120 + 17 + kDown);
}

TEST(OpeningSize, WhatMayNotBeScaledKeepsItsSize)
{
    EXPECT_EQ(For({240, 17}, kScreen, false).zoom, 1);
    const OpeningSize huge = For({6000, 4000}, kScreen, false);
    EXPECT_EQ(huge.zoom, 1);
    EXPECT_EQ(huge.window.width, 1536);
}

TEST(OpeningSize, ATinyScreenHasATinyWindow)
{
    const OpeningSize opening = For({352, 257}, {40, 30});
    EXPECT_EQ(opening.window.width, 32);
    EXPECT_EQ(opening.window.height, 24);
}

} // namespace

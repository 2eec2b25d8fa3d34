// SPDX-License-Identifier: MIT
#include "viewer/NewRows.h"

#include <gtest/gtest.h>

namespace
{

using viewer::NewRows;

constexpr Rect kDrawn = {100, 10, 150, 60}; // 50 high

TEST(NewRows, OfAPictureInItsOwnSizeAreThoseRows)
{
    NewRows rows;
    rows.Add(10, 20);
    const std::optional<Rect> band = rows.TakeWithin(kDrawn, 50);
    ASSERT_TRUE(band);
    EXPECT_EQ(band->top, 110);
    EXPECT_EQ(band->bottom, 120);
    EXPECT_EQ(band->left, 10);
    EXPECT_EQ(band->right, 60);
}

TEST(NewRows, OfAScaledPictureCoverEveryRowTheyTouch)
{
    NewRows rows;
    rows.Add(3, 4);
    const std::optional<Rect> band = rows.TakeWithin(kDrawn, 100);
    EXPECT_EQ(band->top, 101);
    EXPECT_EQ(band->bottom, 102);
}

TEST(NewRows, AreGathered)
{
    NewRows rows;
    rows.Add(10, 20);
    rows.Add(5, 12);
    const std::optional<Rect> band = rows.TakeWithin(kDrawn, 50);
    EXPECT_EQ(band->top, 105);
    EXPECT_EQ(band->bottom, 120);
}

TEST(NewRows, AreTakenOnce)
{
    NewRows rows;
    rows.Add(0, 50);
    rows.TakeWithin(kDrawn, 50);
    EXPECT_TRUE(rows.IsEmpty());
    EXPECT_FALSE(rows.TakeWithin(kDrawn, 50));
}

TEST(NewRows, StayInThePicture)
{
    NewRows rows;
    rows.Add(-3, 70);
    const std::optional<Rect> band = rows.TakeWithin(kDrawn, 50);
    EXPECT_EQ(band->top, 100);
    EXPECT_EQ(band->bottom, 150);
}

} // namespace

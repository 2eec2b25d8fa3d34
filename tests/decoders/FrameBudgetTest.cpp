// SPDX-License-Identifier: MIT
#include "decoders/common/FrameBudget.h"

#include "tests/support/ErrorOf.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(FrameBudget, CountsRowsByFourBytesAndTheMaskAlong)
{
    EXPECT_EQ(FrameBudget::BytesOf(5, 10, 8), 80U);
    EXPECT_EQ(FrameBudget::BytesOf(33, 2, 8, 1), 2U * (36 + 8));
    EXPECT_EQ(FrameBudget::BytesOf(3, 1, 32, 32), 24U);
}

TEST(FrameBudget, KnowsWhatCoordinatesAndRowBytesReach)
{
    EXPECT_TRUE(FrameBudget::FitsCoordinates(32767, 32767, 8));
    EXPECT_FALSE(FrameBudget::FitsCoordinates(32768, 1, 8));
    EXPECT_FALSE(FrameBudget::FitsCoordinates(1, 32768, 8));
    EXPECT_TRUE(FrameBudget::FitsCoordinates(16383, 1, 32));
    EXPECT_FALSE(FrameBudget::FitsCoordinates(16384, 1, 32));
    EXPECT_TRUE(FrameBudget::FitsCoordinates(32767, 1, 16));
    EXPECT_FALSE(FrameBudget::FitsCoordinates(0, 1, 8));
    EXPECT_FALSE(FrameBudget::FitsCoordinates(1, 0, 8));
}

TEST(FrameBudget, LooksAtTheMasksWidthToo)
{
    const FrameBudget budget;
    EXPECT_TRUE(budget.Allows(20000, 1, 8, 1));
    EXPECT_FALSE(budget.Allows(20000, 1, 8, 32));
}

TEST(FrameBudget, RefusesWhatExceedsTheRest)
{
    FrameBudget budget(100);
    EXPECT_EQ(test::ErrorOf([&] { budget.Take(4, 20, 8); }), 0);
    EXPECT_EQ(budget.Left(), 20U);
    EXPECT_EQ(test::ErrorOf([&] { budget.Take(4, 6, 8); }), memFullErr);
    EXPECT_EQ(budget.Left(), 20U);
    EXPECT_EQ(test::ErrorOf([&] { budget.Take(4, 5, 8); }), 0);
}

TEST(FrameBudget, TakesOtherMemoryFromTheSameRest)
{
    FrameBudget budget(100);
    EXPECT_EQ(test::ErrorOf([&] { budget.TakeBytes(60); }), 0);
    EXPECT_EQ(test::ErrorOf([&] { budget.TakeBytes(41); }), memFullErr);
    EXPECT_EQ(budget.Left(), 40U);
}

TEST(FrameBudget, IsAsLargeAsTheEnvironmentSays)
{
    setenv("VORN_IMAGE_BYTES", "12345", 1);
    EXPECT_EQ(FrameBudget().Left(), 12345U);
    for (const char* const text : {"", "-1", "12x", "1e9", "99999999999999999999"}) {
        setenv("VORN_IMAGE_BYTES", text, 1);
        EXPECT_EQ(FrameBudget().Left(), FrameBudget::kDefaultLimit) << text;
    }
    unsetenv("VORN_IMAGE_BYTES");
    EXPECT_EQ(FrameBudget().Left(), UInt64{512} * 1024 * 1024);
}

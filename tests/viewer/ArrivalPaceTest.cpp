// SPDX-License-Identifier: MIT
#include "viewer/ArrivalPace.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

using viewer::ArrivalPace;

TEST(ArrivalPace, WithoutARateEverythingIsThereAtOnce)
{
    EXPECT_EQ(ArrivalPace().BytesBy(0), INT32_MAX);
    EXPECT_FALSE(ArrivalPace().IsLimited());
}

TEST(ArrivalPace, NothingIsThereAtTheStart)
{
    EXPECT_EQ(ArrivalPace(1000).BytesBy(0), 0);
}

TEST(ArrivalPace, BytesAreRateTimesTimeRoundedDown)
{
    const ArrivalPace pace(1000);
    EXPECT_EQ(pace.BytesBy(999), 0);
    EXPECT_EQ(pace.BytesBy(1000), 1);
    EXPECT_EQ(pace.BytesBy(1'500'000), 1500);
    EXPECT_EQ(ArrivalPace(7).BytesBy(999'999), 6);
}

TEST(ArrivalPace, ABytePerSecondIsAPaceToo)
{
    EXPECT_EQ(ArrivalPace(1).BytesBy(999'999), 0);
    EXPECT_EQ(ArrivalPace(1).BytesBy(1'000'000), 1);
}

TEST(ArrivalPace, EndsAtTheLargestObject)
{
    EXPECT_EQ(ArrivalPace(1'000'000'000'000).BytesBy(1'000'000'000'000'000), INT32_MAX);
    EXPECT_EQ(ArrivalPace(INT32_MAX).BytesBy(2'000'000), INT32_MAX);
}

TEST(ArrivalPace, AgreesWithWideArithmetic)
{
    std::mt19937_64 random(2);
    std::uniform_int_distribution<SInt64> rates(1, 10'000'000);
    std::uniform_int_distribution<SInt64> times(0, 100'000'000);
    for (int i = 0; i < 1000; ++i) {
        const SInt64 rate = rates(random);
        const SInt64 time = times(random);
        EXPECT_EQ(ArrivalPace(rate).BytesBy(time), rate * time / 1'000'000);
    }
}

} // namespace

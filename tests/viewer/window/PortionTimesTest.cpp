// SPDX-License-Identifier: MIT
#include "viewer/window/PortionTimes.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

using viewer::PortionTimes;

constexpr SInt64 kLatency = 40'000;
constexpr SInt64 kPortion = 20'000;

TEST(PortionTimes, APortionIsHeardALatencyAfterItIsAskedFor)
{
    PortionTimes times(kLatency);
    EXPECT_EQ(times.Next(5'000, kPortion), 5'000 + kLatency);
    EXPECT_EQ(times.Next(25'000, kPortion), 25'000 + kLatency);
}

TEST(PortionTimes, PortionsFollowEachOtherHoweverUnevenlyTheyAreAskedFor)
{
    PortionTimes times(kLatency);
    SInt64 before = times.Next(0, kPortion);
    for (SInt64 i = 1; i < 200; ++i) {
        const SInt64 jitter = i % 3 == 0 ? 9'000 : i % 3 == 1 ? -9'000 : 0;
        const SInt64 heard = times.Next(i * kPortion + jitter, kPortion);
        ASSERT_NEAR(static_cast<double>(heard - before), kPortion, 1'500);
        ASSERT_NEAR(static_cast<double>(heard), static_cast<double>(i * kPortion + kLatency),
                    2'000);
        before = heard;
    }
}

TEST(PortionTimes, FollowADeviceThatIsTooSlow)
{
    PortionTimes times(kLatency);
    SInt64 asked = 0;
    SInt64 heard = 0;
    for (int i = 0; i < 1000; ++i, asked += kPortion + kPortion / 100) {
        heard = times.Next(asked, kPortion);
    }
    EXPECT_NEAR(static_cast<double>(heard - (asked - kPortion)), kLatency, 4'000);
}

TEST(PortionTimes, BeginAnewAfterTheDeviceStoodStill)
{
    PortionTimes times(kLatency);
    times.Next(0, kPortion);
    EXPECT_EQ(times.Next(3'000'000, kPortion), 3'000'000 + kLatency);
}

} // namespace

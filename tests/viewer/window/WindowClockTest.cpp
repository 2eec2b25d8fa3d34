// SPDX-License-Identifier: MIT
#include "viewer/window/WindowClock.h"

#include "toolbox/events/Events.h"

#include <gtest/gtest.h>

namespace
{

using viewer::WindowClock;

constexpr SInt64 kSecond = 1'000'000;

TEST(WindowClock, IsTheToolboxsClockAndStartsAtZero)
{
    const SInt64 before = WindowClock::RealNow();
    const WindowClock clock;
    const SInt64 said = ToolboxMicroseconds();
    EXPECT_GE(said, 0);
    EXPECT_LE(said, WindowClock::RealNow() - before);
}

TEST(WindowClock, RunsAsFastAsTheRealOneWithoutSound)
{
    const WindowClock clock;
    const SInt64 now = WindowClock::RealNow();
    EXPECT_EQ(clock.At(now + kSecond) - clock.At(now), kSecond);
}

TEST(WindowClock, RunsSlowerWhereItIsAheadOfTheSound)
{
    WindowClock clock;
    const SInt64 now = WindowClock::RealNow();
    clock.Correct(20'000, now);
    EXPECT_NEAR(static_cast<double>(clock.At(now + kSecond) - clock.At(now)), 990'000, 1);
}

TEST(WindowClock, RunsFasterWhereItIsBehindTheSound)
{
    WindowClock clock;
    const SInt64 now = WindowClock::RealNow();
    clock.Correct(-20'000, now);
    EXPECT_NEAR(static_cast<double>(clock.At(now + kSecond) - clock.At(now)), 1'010'000, 1);
}

TEST(WindowClock, TellsHowLongToSleepWhereItIsSlower)
{
    WindowClock clock;
    const SInt64 now = WindowClock::RealNow();
    clock.Correct(40'000, now);
    const SInt64 sleep = clock.RealDuration(kSecond);
    EXPECT_GE(clock.At(now + sleep) - clock.At(now), kSecond - 1);
    EXPECT_LE(clock.At(now + sleep) - clock.At(now), kSecond + 1);
}

TEST(WindowClock, NeverDeviatesSoFarThatItIsSeen)
{
    WindowClock clock;
    clock.Correct(10 * kSecond, WindowClock::RealNow());
    EXPECT_DOUBLE_EQ(clock.Rate(), 0.98);
    clock.Correct(-10 * kSecond, WindowClock::RealNow());
    EXPECT_DOUBLE_EQ(clock.Rate(), 1.02);
}

TEST(WindowClock, DoesNotJumpWhenItIsCorrected)
{
    WindowClock clock;
    SInt64 real = WindowClock::RealNow();
    for (int i = 0; i < 100; ++i) {
        const SInt64 before = clock.At(real);
        clock.Correct(i % 2 == 0 ? 50'000 : -50'000, real);
        ASSERT_EQ(clock.At(real), before);
        real += 10'000;
    }
}

TEST(WindowClock, FollowsADeviceThatIsTooSlow)
{
    WindowClock clock;
    const SInt64 start = WindowClock::RealNow();
    const auto heardBy = [&](SInt64 real) { return (real - start) * 99 / 100; };
    SInt64 real = start;
    for (; real < start + 60 * kSecond; real += 23'000) {
        clock.Correct(clock.At(real) - heardBy(real), real);
    }
    EXPECT_NEAR(static_cast<double>(clock.At(real) - heardBy(real)), 20'000, 2000);
}

} // namespace

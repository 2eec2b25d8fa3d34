// SPDX-License-Identifier: MIT
#include "toolbox/events/Events.h"

#include "tests/toolbox/FailingOperations.h"
#include "toolbox/Errors.h"
#include "toolbox/gestalt/Gestalt.h"

#include <gtest/gtest.h>

#include <ctime>
#include <limits>

namespace
{

class TickClock : public testing::Test
{
protected:
    TickClock()
    {
        SetToolboxClock([](void* refCon) { return *static_cast<SInt64*>(refCon); }, &now_);
    }
    ~TickClock() override { SetToolboxClock(nullptr, nullptr); }

    SInt64 now_ = 0;
};

TEST_F(TickClock, StartsAtOne)
{
    EXPECT_EQ(1U, TickCount());
}

TEST_F(TickClock, GoesSixtyTimesASecond)
{
    now_ = 16666;
    EXPECT_EQ(1U, TickCount());
    now_ = 16667;
    EXPECT_EQ(2U, TickCount());
    now_ = 2000000;
    EXPECT_EQ(121U, TickCount());
}

TEST_F(TickClock, WrapsAsAnUnsignedNumberDoes)
{
    now_ = SInt64{std::numeric_limits<UInt32>::max()} * 1000000 / 60 + 1;
    EXPECT_EQ(0U, TickCount());
}

TEST_F(TickClock, ShowsTheMicrosecondsBehindTheTicks)
{
    now_ = 12345;
    EXPECT_EQ(12345, ToolboxMicroseconds());
}

TEST(SystemClock, AdvancesWithRealTime)
{
    const SInt64 before = ToolboxMicroseconds();
    const timespec pause{0, 20000000};
    nanosleep(&pause, nullptr);
    EXPECT_GE(ToolboxMicroseconds() - before, 20000);
}

TEST(GestaltValues, QuickTimeHasAVersionInItsHighWord)
{
    SInt32 version = 0;
    EXPECT_EQ(noErr, Gestalt(gestaltQuickTime, &version));
    EXPECT_EQ(0x07000000, version);
}

TEST(GestaltValues, AnUnknownSelectorIsAnError)
{
    SInt32 value = 5;
    EXPECT_EQ(gestaltUndefSelectorErr, Gestalt(FOUR_CHARS('n', 'o', 'n', 'e'), &value));
    EXPECT_EQ(5, value);
}

TEST(GestaltValues, AnotherVersionCanBeTried)
{
    SetGestaltValue(gestaltQuickTime, 0x04FF0000);
    SInt32 version = 0;
    Gestalt(gestaltQuickTime, &version);
    SetGestaltValue(gestaltQuickTime, 0x07000000);
    EXPECT_EQ(0x04FF0000, version);
}

TEST(GestaltValues, AFailureToldByTheObserverIsItsResult)
{
    const FailingOperations failing(-5550);
    SInt32 version = 0;
    EXPECT_EQ(-5550, Gestalt(gestaltQuickTime, &version));
    EXPECT_EQ(0, version);
}

} // namespace

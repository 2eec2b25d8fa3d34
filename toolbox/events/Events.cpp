// SPDX-License-Identifier: MIT
#include "toolbox/events/Events.h"

#include "toolbox/probe/Announce.h"

#include <ctime>

namespace
{

constexpr SInt64 kMicrosecondsPerSecond = 1000000;
constexpr SInt64 kTicksPerSecond = 60;

SInt64 MonotonicMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kMicrosecondsPerSecond + now.tv_nsec / 1000;
}

SInt64 SystemClock(void* /*refCon*/)
{
    static const SInt64 start = MonotonicMicroseconds();
    return MonotonicMicroseconds() - start;
}

ToolboxClockProc gClock = SystemClock;
void* gClockRefCon = nullptr;

} // namespace

UInt32 TickCount(void)
{
    toolbox::Announce("TickCount");
    return static_cast<UInt32>(1 +
                               ToolboxMicroseconds() * kTicksPerSecond / kMicrosecondsPerSecond);
}

void SetToolboxClock(ToolboxClockProc clock, void* refCon)
{
    gClock = clock != nullptr ? clock : SystemClock;
    gClockRefCon = refCon;
}

SInt64 ToolboxMicroseconds(void)
{
    return gClock(gClockRefCon);
}

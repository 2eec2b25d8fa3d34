// SPDX-License-Identifier: MIT
#include "viewer/PageClock.h"

#include "toolbox/events/Events.h"

#include <algorithm>

namespace viewer
{
namespace
{

SInt64 ReadPageClock(void* clock)
{
    return static_cast<const PageClock*>(clock)->Now();
}

} // namespace

PageClock::PageClock()
{
    SetToolboxClock(ReadPageClock, this);
}

PageClock::~PageClock()
{
    SetToolboxClock(nullptr, nullptr);
}

SInt64 NextTickAfter(SInt64 microseconds)
{
    constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
    constexpr SInt64 kTicksPerSecond = 60;
    const SInt64 next = microseconds * kTicksPerSecond / kMicrosecondsPerSecond + 1;
    return (next * kMicrosecondsPerSecond + kTicksPerSecond - 1) / kTicksPerSecond;
}

void PageClock::AdvanceTo(SInt64 microseconds)
{
    now_ = std::max(now_, microseconds);
}

} // namespace viewer

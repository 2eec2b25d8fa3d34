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

void PageClock::AdvanceTo(SInt64 microseconds)
{
    now_ = std::max(now_, microseconds);
}

} // namespace viewer

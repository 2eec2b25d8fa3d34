// SPDX-License-Identifier: MIT
//
// The page's clock for a run without a window: it stands still until it is moved.
#pragma once

#include "toolbox/Types.h"

namespace viewer
{

// While it exists it is the toolbox's clock, so movies, ticks and arriving bytes go by it. It
// starts at 0, when the page does.
class PageClock
{
public:
    PageClock();
    ~PageClock();
    PageClock(const PageClock&) = delete;
    PageClock& operator=(const PageClock&) = delete;

    SInt64 Now() const { return now_; }
    // Microseconds; a time that has passed changes nothing.
    void AdvanceTo(SInt64 microseconds);

private:
    SInt64 now_ = 0;
};

// The time at which the tick count next changes.
SInt64 NextTickAfter(SInt64 microseconds);

// One tick of the page's clock, rounded up to whole microseconds.
inline constexpr SInt64 kTickMicroseconds = 16667;

} // namespace viewer

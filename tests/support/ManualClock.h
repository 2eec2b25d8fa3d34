// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/events/Events.h"

#include <algorithm>

namespace test
{

// The toolbox's clock for the length of a scope; stands still unless told to go on.
class ManualClock
{
public:
    ManualClock() { SetToolboxClock(Read, this); }
    ~ManualClock() { SetToolboxClock(nullptr, nullptr); }
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    // To the moment when TickCount, which begins with 1, becomes `ticks`; never back.
    void GoToTick(UInt32 ticks)
    {
        constexpr SInt64 kTicksPerSecond = 60;
        const SInt64 elapsed = (SInt64{ticks} - 1) * 1000000;
        microseconds_ = std::max(microseconds_, (elapsed + kTicksPerSecond - 1) / kTicksPerSecond);
    }

private:
    static SInt64 Read(void* clock) { return static_cast<ManualClock*>(clock)->microseconds_; }

    SInt64 microseconds_ = 0;
};

} // namespace test

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/events/Events.h"

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

    // To the moment when TickCount becomes `ticks`.
    void GoToTick(UInt32 ticks)
    {
        while (TickCount() < ticks) {
            microseconds_ += 100;
        }
    }

private:
    static SInt64 Read(void* clock) { return static_cast<ManualClock*>(clock)->microseconds_; }

    SInt64 microseconds_ = 0;
};

} // namespace test

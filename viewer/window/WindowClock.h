// SPDX-License-Identifier: MIT
//
// The page's clock in a window: the real one, led by what is heard.
#pragma once

#include "toolbox/Types.h"

namespace viewer
{

// While it exists it is the toolbox's clock. It starts at 0. A sound device does not take exactly
// as many frames a second as it says; so that pictures stay with the sound, the clock then runs a
// little slower or faster, which nobody sees.
class WindowClock
{
public:
    WindowClock();
    ~WindowClock();
    WindowClock(const WindowClock&) = delete;
    WindowClock& operator=(const WindowClock&) = delete;

    // Microseconds of the page.
    SInt64 Now() const { return At(RealNow()); }
    // What it says at a real time not long ago.
    SInt64 At(SInt64 realTime) const;
    // It is that far ahead of the sound (less than 0: behind), as of now; 0 without sound.
    void Correct(SInt64 ahead, SInt64 realTime);
    double Rate() const { return rate_; }

    static SInt64 RealNow();

private:
    SInt64 realBase_;
    SInt64 base_ = 0;
    double rate_ = 1;
};

} // namespace viewer

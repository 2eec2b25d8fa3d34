// SPDX-License-Identifier: MIT
//
// The page's clock in a window: the real one, led by what is heard.
#pragma once

#include "toolbox/Types.h"

namespace viewer
{

// The page's time as it follows from the real one.
struct TimeLine {
    SInt64 realBase = 0;
    SInt64 base = 0;
    double rate = 1;

    SInt64 At(SInt64 realTime) const
    {
        return base + static_cast<SInt64>(static_cast<double>(realTime - realBase) * rate);
    }
};

// While it exists it is the toolbox's clock. It starts at 0. A sound device does not take exactly
// as many frames a second as it says; so that pictures stay with the sound, the clock then runs a
// little slower or faster, which nobody sees.
class WindowClock
{
public:
    // `realNow`: where the real time comes from, in microseconds.
    explicit WindowClock(SInt64 (*realNow)() = RealNow);
    ~WindowClock();
    WindowClock(const WindowClock&) = delete;
    WindowClock& operator=(const WindowClock&) = delete;

    // Microseconds of the page.
    SInt64 Now() const { return At(realNow_()); }
    // What it says at a real time not long ago.
    SInt64 At(SInt64 realTime) const { return line_.At(realTime); }
    // How it goes on as long as it is not corrected.
    const TimeLine& Line() const { return line_; }
    // How long something takes in real time that takes that long by the page's.
    SInt64 RealDuration(SInt64 duration) const;
    // It is that far ahead of the sound (less than 0: behind), as of now; 0 without sound.
    void Correct(SInt64 ahead) { Correct(ahead, realNow_()); }
    void Correct(SInt64 ahead, SInt64 realTime);
    double Rate() const { return line_.rate; }

    static SInt64 RealNow();

private:
    SInt64 (*realNow_)();
    TimeLine line_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/window/WindowClock.h"

#include "toolbox/events/Events.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace viewer
{
namespace
{

// Half of what it is ahead is made good in a second, at 2 % faster or slower at most.
constexpr double kShareOfASecond = 0.5;
constexpr double kMostDeviation = 0.02;
constexpr double kMicrosecondsPerSecond = 1e6;

SInt64 ReadWindowClock(void* clock)
{
    return static_cast<const WindowClock*>(clock)->Now();
}

} // namespace

WindowClock::WindowClock(SInt64 (*realNow)()) : realNow_(realNow), line_{realNow()}
{
    SetToolboxClock(ReadWindowClock, this);
}

WindowClock::~WindowClock()
{
    SetToolboxClock(nullptr, nullptr);
}

SInt64 WindowClock::RealNow()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

SInt64 WindowClock::RealDuration(SInt64 duration) const
{
    return static_cast<SInt64>(std::ceil(static_cast<double>(duration) / line_.rate));
}

void WindowClock::Correct(SInt64 ahead, SInt64 realTime)
{
    line_.base = std::max(line_.base, At(realTime));
    line_.realBase = realTime;
    const double seconds = static_cast<double>(ahead) / kMicrosecondsPerSecond;
    line_.rate = 1 - std::clamp(seconds * kShareOfASecond, -kMostDeviation, kMostDeviation);
}

} // namespace viewer

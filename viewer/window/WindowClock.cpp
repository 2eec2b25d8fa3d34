// SPDX-License-Identifier: MIT
#include "viewer/window/WindowClock.h"

#include "toolbox/events/Events.h"

#include <algorithm>
#include <chrono>

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

WindowClock::WindowClock() : realBase_(RealNow())
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

SInt64 WindowClock::At(SInt64 realTime) const
{
    return base_ + static_cast<SInt64>(static_cast<double>(realTime - realBase_) * rate_);
}

void WindowClock::Correct(SInt64 ahead, SInt64 realTime)
{
    base_ = std::max(base_, At(realTime));
    realBase_ = realTime;
    const double seconds = static_cast<double>(ahead) / kMicrosecondsPerSecond;
    rate_ = 1 - std::clamp(seconds * kShareOfASecond, -kMostDeviation, kMostDeviation);
}

} // namespace viewer

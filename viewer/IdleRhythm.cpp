// SPDX-License-Identifier: MIT
#include "viewer/IdleRhythm.h"

#include "viewer/PageClock.h"

#include <algorithm>

namespace viewer
{
namespace
{

// A fiftieth of the time for which nothing has changed: late by 2 % of it at most.
constexpr SInt64 kPartOfQuietTime = 50;

} // namespace

void IdleRhythm::Idled(SInt64 now, Kind kind)
{
    const SInt64 nextTick = NextTickAfter(now);
    next_ = kind == Kind::kEveryTick
                ? nextTick
                : std::max(nextTick, now + (now - lastChange_) / kPartOfQuietTime);
}

void IdleRhythm::Changed(SInt64 now)
{
    lastChange_ = now;
    next_ = std::min(next_, NextTickAfter(now));
}

} // namespace viewer

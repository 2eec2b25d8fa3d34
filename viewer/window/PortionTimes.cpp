// SPDX-License-Identifier: MIT
#include "viewer/window/PortionTimes.h"

#include <cstdlib>

namespace viewer
{
namespace
{

constexpr SInt64 kShareOfDeviation = 16;
// Later or earlier than this is no jitter: the device has begun anew.
constexpr SInt64 kMostJitter = 100'000;

} // namespace

SInt64 PortionTimes::Next(SInt64 now, SInt64 duration)
{
    const SInt64 asked = now + latency_;
    const SInt64 deviation = asked - expected_.value_or(asked);
    const bool isNew = std::abs(deviation) > kMostJitter;
    const SInt64 heard = isNew ? asked : expected_.value_or(asked) + deviation / kShareOfDeviation;
    expected_ = heard + duration;
    return heard;
}

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// When a device's portions of sound are heard.
#pragma once

#include "toolbox/Types.h"

#include <optional>

namespace viewer
{

// A device takes a portion after the other; they are heard without a gap, a fixed time after they
// are asked for. But they are asked for somewhat early or late: that is evened out. Times are real
// microseconds.
class PortionTimes
{
public:
    explicit PortionTimes(SInt64 latency) : latency_(latency) {}

    // When the portion is heard that is asked for now and lasts so long.
    SInt64 Next(SInt64 now, SInt64 duration);

private:
    SInt64 latency_;
    std::optional<SInt64> expected_; // if the device did not stand still
};

} // namespace viewer

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/probe/Probe.h"

#include <array>

// How many objects of each kind are alive at the moment that it is made.
class LiveObjects
{
public:
    LiveObjects()
    {
        for (SInt32 kind = 0; kind < kLiveObjectKinds; ++kind)
            counts_.at(static_cast<size_t>(kind)) = CountLiveObjects(kind);
    }
    bool operator==(const LiveObjects&) const = default;

private:
    std::array<SInt32, kLiveObjectKinds> counts_{};
};

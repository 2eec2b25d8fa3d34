// SPDX-License-Identifier: MIT
//
// Two commands in turn, each until something comes of it.
#pragma once

#include "bench/Command.h"

#include <functional>
#include <vector>

struct Racer {
    Command command;
    // Made before the command is started; returns when it has done what is waited for, or throws.
    std::function<std::function<void()>()> watch;
    std::vector<double> milliseconds;
    std::vector<double> processorMilliseconds;
};

// Runs each `runs` times, ends it when it is done, and prints the medians of the time and of the
// processor's time in it, with the first one's ratio to the second. The processor's time hardly
// minds what else the machine does. False if the ratio of the times is above `gate`.
bool Race(const char* name, int runs, double gate, Racer& ours, Racer& theirs);

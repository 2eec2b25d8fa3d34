// SPDX-License-Identifier: MIT
#pragma once

#include <ctime>
#include <functional>

// What some work takes of the processor, so that a machine with other things to do measures the
// same.
inline double ProcessorSeconds(const std::function<void()>& work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    const double start = now();
    work();
    return now() - start;
}

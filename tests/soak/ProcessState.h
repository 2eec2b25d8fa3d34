// SPDX-License-Identifier: MIT
//
// What the process holds at a moment.
#pragma once

#include "toolbox/probe/Probe.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

// Allocated; 0 under the sanitizers, which have a heap of their own.
inline size_t HeapBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

struct ProcessState {
    std::array<SInt32, kLiveObjectKinds> live{}; // of the toolbox's objects, by kind
    size_t descriptors = 0;
    size_t heapBytes = 0;
    size_t residentBytes = 0; // in memory
    double processorSeconds = 0;

    static ProcessState Now()
    {
        ProcessState state;
        for (SInt32 kind = 0; kind < kLiveObjectKinds; ++kind) {
            state.live[static_cast<size_t>(kind)] = CountLiveObjects(kind);
        }
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        state.descriptors = static_cast<size_t>(std::distance(begin(descriptors), {}));
        state.heapBytes = HeapBytes();
        size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> pages;
        state.residentBytes = pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        const auto seconds = [](const timeval& time) {
            return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        };
        state.processorSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
        return state;
    }
};

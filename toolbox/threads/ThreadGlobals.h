// SPDX-License-Identifier: MIT
//
// What every cooperative thread has of its own and a new one inherits from its maker.
#pragma once

struct CGrafPort;
struct GDeviceRecord;

namespace toolbox
{

struct ThreadGlobals {
    CGrafPort* port = nullptr;
    GDeviceRecord** device = nullptr;
    void* statisticsOwner = nullptr;
};

// The current thread's; valid until the thread ends.
ThreadGlobals& CurrentThreadGlobals();

// True while a thread other than the current one is ready to run.
bool IsAnotherThreadReady();

} // namespace toolbox

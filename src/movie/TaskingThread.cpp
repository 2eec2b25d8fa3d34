// SPDX-License-Identifier: MIT
//
// The tasking thread: opens the movie as soon as enough of it is on disk and gives it time until
// all of it is. After that the controller's idle action does.
#include "src/movie/PortSwitch.h"
#include "src/movie/VornMoviePlugin.h"
#include "toolbox/events/Events.h"

namespace
{

constexpr SInt32 kMinBytesBeforeOpen = 65536;
constexpr UInt32 kOpenRetryTicks = 120;

} // namespace

void* VornMoviePlugin::TaskingThreadEntry(void* param)
{
    try {
        static_cast<VornMoviePlugin*>(param)->MovieTaskingThread();
    } catch (...) {
        // There is nobody to tell: the movie just does not open or stops being tasked.
    }
    return nullptr;
}

void VornMoviePlugin::MovieTaskingThread()
{
    UInt32 nextOpenTick = 0;
    for (;;) {
        {
            const PortSwitch port(moviePort);
            if (movie != nullptr) {
                MoviesTask(movie, 0);
            } else {
                OpenMovieIfDue(nextOpenTick);
            }
        }
        if (allDataSpooled) {
            break;
        }
        YieldToAnyThread();
    }
    taskingThread = kNoThreadID;
}

void VornMoviePlugin::OpenMovieIfDue(UInt32& nextOpenTick)
{
    const bool due =
        allDataSpooled || (TickCount() > nextOpenTick && bytesSpooled > kMinBytesBeforeOpen);
    if (due) {
        OpenMovie(true, !allDataSpooled);
        nextOpenTick = TickCount() + kOpenRetryTicks;
    }
}

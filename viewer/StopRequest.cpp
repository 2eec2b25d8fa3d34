// SPDX-License-Identifier: MIT
#include "viewer/StopRequest.h"

#include <atomic>
#include <csignal>

namespace viewer
{
namespace
{

volatile std::sig_atomic_t gStopWasAsked = 0;
std::atomic<void (*)()> gAlarm = nullptr;
static_assert(decltype(gAlarm)::is_always_lock_free, "it is used in a signal handler");

} // namespace

void AskToStop()
{
    gStopWasAsked = 1;
    if (void (*const alarm)() = gAlarm) {
        alarm();
    }
}

bool StopWasAsked()
{
    return gStopWasAsked != 0;
}

void SetStopAlarm(void (*alarm)())
{
    gAlarm = alarm;
}

} // namespace viewer

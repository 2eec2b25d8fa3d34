// SPDX-License-Identifier: MIT
//
// The machine's sound device.
#pragma once

#include "viewer/window/HeardSound.h"
#include "viewer/window/PortionTimes.h"

#include <SDL.h>
#include <optional>

namespace viewer
{

// While it exists it is the toolbox's sound sink. The device is opened when there is something to
// be heard, in the format of the stream that came first, and closed soon after, so that silence
// costs nothing. Without a device pictures play on alone.
class SoundDevice
{
public:
    SoundDevice();
    ~SoundDevice();
    SoundDevice(const SoundDevice&) = delete;
    SoundDevice& operator=(const SoundDevice&) = delete;

    // Keeps clock and sound together, and closes a device that has nothing to do. To be called
    // after each round of work.
    void Tend(WindowClock& clock);
    // When Tend has something to do though nothing else happens, by the real clock.
    std::optional<SInt64> NextTime() const { return nextTime_; }
    bool IsOpen() const { return device_ != 0; }

private:
    static SoundDevice& Self(void* refCon) { return *static_cast<SoundDevice*>(refCon); }
    static void FillPortion(void* self, Uint8* bytes, int count);
    SInt64 Prepare();
    bool Open();
    void Close();

    HeardSound sound_;
    SDL_AudioDeviceID device_ = 0;
    bool hasFailed_ = false;
    SInt64 portionTime_ = 0;
    std::optional<PortionTimes> times_; // belongs to the device's thread while it is open
    std::optional<SInt64> nextTime_;    // none while no device is open
    std::optional<SInt64> silentSince_; // as far as Tend has seen
};

} // namespace viewer

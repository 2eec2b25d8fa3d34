// SPDX-License-Identifier: MIT
//
// The page's sound as it is heard.
#pragma once

#include "viewer/window/SoundStream.h"
#include "viewer/window/WindowClock.h"

#include <SDL.h>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

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

    // Leads the clock by what has been heard, and closes a device that has nothing to do. To be
    // called after each round of work.
    void Tend(WindowClock& clock);
    // When Tend has something to do though nothing else happens, by the real clock.
    std::optional<SInt64> NextTime() const { return nextTime_; }
    bool IsOpen() const { return device_ != 0; }

private:
    static void* OpenStream(void* self, SInt32 sampleRate, SInt32 channels);
    static void PlayStream(void* self, void* stream, const SInt16* frames, SInt32 count,
                           SInt64 atMicroseconds);
    static void CloseStream(void* self, void* stream);
    static void FillPortion(void* self, Uint8* bytes, int count);
    void Fill(SInt16* samples, size_t count);

    // What the device was about to play at a real time.
    struct Reading {
        const SoundStream* stream = nullptr;
        int generation = 0;
        SInt64 playing = 0;
        SInt64 realTime = 0;
    };
    bool OpenDevice();
    void CloseDevice();
    void Read();
    void Lead(WindowClock& clock, const Reading& reading);
    bool IsSilent() const;

    std::mutex mutex_; // streams_ and reading_ belong to the device's thread as well
    std::vector<std::unique_ptr<SoundStream>> streams_;
    std::optional<Reading> reading_;

    SoundFormat format_;
    SDL_AudioDeviceID device_ = 0;
    bool hasFailed_ = false;
    std::vector<SInt32> sums_;
    std::optional<SInt64> nextTime_;    // none while no device is open
    std::optional<SInt64> silentSince_; // as far as Tend has seen
    Reading base_;                      // since when …
    SInt64 lag_ = 0;                    // … the sound has been this far behind the clock
};

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// The page's sound as it is heard: the streams of all movies, brought together for a device.
#pragma once

#include "viewer/window/SoundStream.h"
#include "viewer/window/WindowClock.h"

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace viewer
{

// Every frame sounds when its time on the page's clock has come. Because a device has a clock of
// its own, the page's follows it while something sounds. Whoever plays streams does so on one
// thread, the device takes them on another.
class HeardSound
{
public:
    // Streams, as the toolbox tells of them (toolbox/quicktime/Movies.h).
    SoundStream* Open(SInt32 sampleRate, SInt32 channels);
    void Play(SoundStream& stream, const SInt16* frames, SInt32 count, SInt64 at);
    void Recall(SoundStream& stream, SInt64 at);
    void SetVolume(SoundStream& stream, SInt32 volume);
    void Close(SoundStream& stream);

    // That of the stream that came first; rate 0 before.
    const SoundFormat& Format() const { return format_; }
    // Nothing sounds or will.
    bool IsSilent();
    // Keeps clock and sound together. To be called after each round of work.
    void Tend(WindowClock& clock);

    // For the device: `frames` frames, the first of which is heard at that real time.
    void Fill(SInt16* samples, size_t frames, SInt64 heardAt);

private:
    std::optional<SInt64> DueTime() const;

    std::mutex mutex_; // of all that follow but the format, which never changes
    std::vector<std::unique_ptr<SoundStream>> streams_;
    TimeLine line_;               // as Tend has last seen it
    std::optional<SInt64> ahead_; // how far the clock was ahead of the sound at the last portion
    std::vector<SInt32> sums_;
    SoundFormat format_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// One movie's sound on its way to the device.
#pragma once

#include "viewer/StreamConverter.h"

#include <deque>
#include <optional>
#include <vector>

namespace viewer
{

// Frames come in pieces, ahead of their time, and each leaves when its time has come. Whatever
// begins or ends, be it for a pause or because something came too late, does so with a short ramp,
// and so does a change of loudness: there is no click. It knows nothing of threads: whoever shares
// it locks it. Times are microseconds of the page's clock.
class SoundStream
{
public:
    SoundStream(SoundFormat from, SoundFormat to);

    // The next frames, due from that time on.
    void Add(const SInt16* frames, SInt32 count, SInt64 at);
    // Frames that are due from then on, and have not left, are not to be heard.
    void Recall(SInt64 at);
    // 0 to 256, as they are.
    void SetVolume(SInt32 volume);
    // Adds what is heard from `heardAt` on to `frames` frames of sums.
    void Mix(SInt32* sums, size_t frames, SInt64 heardAt);
    // Nothing follows, and what is left fades out.
    void End();

    bool IsEnded() const { return isEnded_ && IsSilent(); }
    bool IsSilent() const { return stretches_.empty(); }
    // When the next frame to leave is due; none while nothing sounds.
    std::optional<SInt64> DueTime() const;

    // The ramps' length.
    size_t RampFrames() const;

private:
    // Frames that follow each other without a gap.
    struct Stretch {
        SInt64 start = 0; // of the first frame that was in it
        size_t left = 0;  // frames that have left since
        std::vector<SInt16> samples;
        size_t head = 0; // from here on they wait
        bool isFaded = false;
    };
    size_t Waiting(const Stretch& stretch) const;
    SInt64 DueTime(const Stretch& stretch) const;
    void FadeOut(Stretch& stretch);
    void Cut(Stretch& stretch, size_t frames);
    void Drop(Stretch& stretch, size_t frames) const;
    size_t Await(SInt64 heardAt, size_t frames);
    size_t Sound(SInt32* sums, SInt64 heardAt, size_t frames);
    void ComeBackToTime(SInt64 late);
    void Take(Stretch& stretch, SInt32* sums, size_t frames);
    SInt64 DurationOf(size_t frames) const;
    size_t FramesIn(SInt64 duration) const;

    SoundFormat from_;
    SoundFormat to_;
    StreamConverter converter_;
    std::deque<Stretch> stretches_;
    SInt64 nextTime_ = 0;     // of the frame that comes next, if it follows
    bool isSounding_ = false; // the first stretch has begun
    size_t faded_ = 0;        // frames since then, up to a ramp's length
    SInt32 loudness_;
    SInt32 wantedLoudness_;
    bool isEnded_ = false;
};

} // namespace viewer

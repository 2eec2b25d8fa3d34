// SPDX-License-Identifier: MIT
//
// One movie's sound on its way to the device.
#pragma once

#include "viewer/StreamConverter.h"

#include <optional>
#include <vector>

namespace viewer
{

// Frames come in pieces when their time has come, and leave evenly. So that nothing is missing in
// between, some are gathered before the first one sounds; where that was too little, more the next
// time. Sound begins and ends with short ramps, also where it is paused or cut, so that there is no
// click. It knows nothing of threads: whoever shares it locks it.
class SoundStream
{
public:
    SoundStream(SoundFormat from, SoundFormat to);

    // The next frames, due from that time of the page's clock on.
    void Add(const SInt16* frames, SInt32 count, SInt64 atMicroseconds);
    // Adds what sounds now to `frames` frames of sums.
    void Mix(SInt32* sums, size_t frames);
    // Nothing follows, and what is left fades out.
    void End();

    bool IsEnded() const { return isEnded_ && IsSilent(); }
    bool IsSilent() const { return Frames() == 0; }
    // The page's time of the next frame to leave, none while nothing sounds.
    std::optional<SInt64> PlayingTime() const;
    // Changes whenever the time between coming and leaving may have.
    int Generation() const { return generation_; }

    // The ramps' length.
    size_t RampFrames() const;

private:
    size_t Frames() const;
    size_t LeadFrames() const;
    SInt64 DurationOf(size_t frames) const;
    void Splice(std::vector<SInt16>& following);
    void FadeOut(size_t end);
    bool MayStart(size_t frames);
    void Take(SInt32* sums, size_t frames);
    void RunDry();

    SoundFormat from_;
    SoundFormat to_;
    StreamConverter converter_;
    std::vector<SInt16> samples_; // from `head_` on they wait
    size_t head_ = 0;
    std::optional<SInt64> nextTime_; // of the frame that comes next
    SInt64 lead_;                    // microseconds besides a piece
    size_t largestPiece_ = 0;
    size_t waited_ = 0;
    size_t faded_ = 0; // frames since the beginning, up to a ramp's length
    bool isSounding_ = false;
    bool ranDry_ = false;
    bool isEnded_ = false;
    int generation_ = 0;
};

} // namespace viewer

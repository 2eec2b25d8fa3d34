// SPDX-License-Identifier: MIT
//
// The page's sound: mixes the streams of all movies into one.
#pragma once

#include "toolbox/quicktime/Movies.h"

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace viewer
{

// Rate and channels are those of the stream that opens first; that stream passes unchanged as long
// as it sounds alone. Others are brought to them by linear interpolation, and what sounds at the
// same time of the page's clock is added up, cut off at the limits of 16 bits. Time in which
// nothing sounds is left out.
class SoundMixer
{
public:
    // What takes the mixed sound: the format once, before the first samples; then samples of all
    // channels in turn.
    struct Output {
        std::function<void(SInt32 sampleRate, SInt32 channels)> begin;
        std::function<void(const SInt16* samples, size_t count)> write;
    };
    explicit SoundMixer(Output output);
    ~SoundMixer();

    // Streams, as the toolbox tells of them (toolbox/quicktime/Movies.h).
    class Stream;
    Stream* Open(SInt32 sampleRate, SInt32 channels);
    void Play(Stream& stream, const SInt16* frames, SInt32 count, SInt64 atMicroseconds);
    void Close(Stream& stream);

    // Writes out what is still held back.
    void Flush();

private:
    SInt64 PlaceOf(const Stream& stream, SInt64 atMicroseconds);
    void Add(SInt64 place, const std::vector<SInt16>& samples);
    void WriteUpTo(SInt64 place);
    SInt64 EndPlace() const;
    SInt64 FramesIn(SInt64 microseconds) const;

    Output output_;
    SInt32 sampleRate_ = 0;
    SInt32 channels_ = 0;
    std::vector<std::unique_ptr<Stream>> streams_;
    // Sums that are not written yet. A place is the number of a frame in the output.
    std::deque<SInt32> sums_;
    SInt64 firstPlace_ = 0;
    // The last stretch of sound: a time of the page's clock and its place.
    SInt64 stretchTime_ = 0;
    SInt64 stretchPlace_ = 0;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// From the time stamps that packets carry to the movie's one unbroken time.
#pragma once

#include "toolbox/quicktime/LibAV.h"

#include <map>

namespace toolbox
{

class Timeline
{
public:
    enum class Clock {
        kStamps,   // the data carries time stamps: systems streams
        kPictures, // the durations of pictures, which come in coding order, are added up
        kSound     // the durations of frames of sound are added up
    };
    // `start`: the time of the first packet where durations are added up.
    explicit Timeline(Clock clock = Clock::kStamps, Nanoseconds start = 0)
        : clock_(clock), start_(start)
    {
    }

    // Rewrites the packet's time stamps as nanoseconds on the unbroken time line; where the stamps
    // jump (joined recordings), the time goes on from where it was.
    void Place(AVPacket& packet, const AVStream& of);
    // The earliest presentation time and the end of everything placed so far, kNoTime before.
    Nanoseconds First() const { return first_; }
    Nanoseconds End() const { return end_; }
    // What has been added to a stream's stamps, to be given to a time line that begins in mid-data.
    Nanoseconds OffsetOf(int stream) const;
    void SetOffset(Nanoseconds offset) { startOffset_ = offset; }

private:
    struct StreamTime {
        Nanoseconds offset = 0;
        int unknownDurations = 0;   // packets before the first one of known duration
        Nanoseconds next = kNoTime; // where the following packet is expected
    };
    void Count(StreamTime& stream, AVPacket& packet, Nanoseconds duration);
    void Follow(StreamTime& stream, AVPacket& packet, Nanoseconds stamp, Nanoseconds duration);
    void Mend(StreamTime& stream, Nanoseconds stamp);
    void Note(Nanoseconds start, Nanoseconds end);

    Clock clock_;
    Nanoseconds start_;
    Nanoseconds startOffset_ = 0;
    Nanoseconds first_ = kNoTime;
    Nanoseconds end_ = kNoTime;
    std::map<int, StreamTime> streams_;
};

} // namespace toolbox

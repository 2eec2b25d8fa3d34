// SPDX-License-Identifier: MIT
//
// What has arrived of a movie: its length so far and the places at which decoding can begin. Goes
// through the data as it comes, ahead of and apart from the playing.
#pragma once

#include "toolbox/quicktime/MovieStream.h"
#include "toolbox/quicktime/Timeline.h"

#include <vector>

namespace toolbox
{

// A place to begin decoding at.
struct KeySample {
    Nanoseconds time = 0;       // its presentation time
    SInt64 position = 0;        // its first byte
    Nanoseconds stampShift = 0; // what its time line adds to the stamps in the data
};

class MovieIndex
{
public:
    explicit MovieIndex(DataHandlerClient& handler) : stream_(handler) {}

    // Goes through about as many bytes as told, as far as they are there.
    void TakeIn(SInt64 bytes);
    // True when there is nothing more to go through.
    bool IsComplete() const { return isComplete_; }
    // True if TakeIn would get on.
    bool HasWork() const { return !isComplete_ && (!isWaiting_ || stream_.Bytes().HasArrived()); }
    // The time at which the movie begins and the end of what was gone through, kNoTime before
    // there is anything.
    Nanoseconds Start() const { return timeline_.First(); }
    Nanoseconds End() const;
    // The whole length announced by the data or estimated from the sizes, kNoTime if neither.
    Nanoseconds AnnouncedLength(SInt32 fileSize) const;
    // The last sample to begin decoding at for showing `time`; null if there is none.
    const KeySample* FindKey(Nanoseconds time) const;
    SInt64 BytesTaken() const { return stream_.BytesTaken(); }
    const Sniffed& Kind() const { return stream_.Start(); }
    MovieStream& Stream() { return stream_; }

private:
    void Note(AVPacket& packet);
    void NoteTrimmedSound(const AVPacket& packet, int sampleRate);
    bool IsKey(const AVPacket& packet, const AVStream& stream);

    MovieStream stream_;
    Timeline timeline_;
    bool hasTimeline_ = false;
    std::vector<KeySample> keys_; // in the order of the data
    int keyStream_ = -1;
    bool keysArePictures_ = false;
    Nanoseconds trimmed_ = 0; // sound that the data says is not to be played
    bool isComplete_ = false;
    bool isWaiting_ = false;
};

// The time line that fits what a stream is.
Timeline TimelineFor(StreamKind kind, const KeySample& begin);

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// What has arrived of a movie: its length so far and the places at which decoding can begin. Goes
// through the data as it comes, ahead of and apart from the playing.
#pragma once

#include "toolbox/quicktime/KeySample.h"
#include "toolbox/quicktime/MovieStream.h"
#include "toolbox/quicktime/MpegPicture.h"
#include "toolbox/quicktime/Timeline.h"

#include <optional>
#include <vector>

namespace toolbox
{

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
    // From where on the data says that sound is only padding, INT64_MAX while it does not.
    Nanoseconds StartOfPadding() const;
    // The whole length announced by the data or estimated from the sizes, kNoTime if neither.
    Nanoseconds AnnouncedLength(SInt32 fileSize) const;
    // Where to begin for showing and sounding `time`: the beginning (position 0) where nothing
    // later is known.
    KeySample FindKey(Nanoseconds time) const;
    SInt64 BytesTaken() const { return stream_.BytesTaken(); }
    MovieStream& Stream() { return stream_; }

private:
    void Note(AVPacket& packet);
    void NoteTrimmedSound(const AVPacket& packet, int sampleRate);
    void NotePicture(const AVPacket& packet, AVCodecID codec);
    void NoteKey(const AVPacket& packet, AVCodecID codec);
    void NoteLeading(const AVPacket& packet);
    void NoteSound(const AVPacket& packet);
    ReadPlace PlaceOf(const AVPacket& packet, Nanoseconds time) const;
    bool HasStamps() const;
    void TakeNewKey();

    MovieStream stream_;
    Timeline timeline_;
    bool hasTimeline_ = false;
    int pictureStream_ = -1;
    int soundStream_ = -1;
    std::vector<KeySample> keys_;   // in the order of the data, without the first picture
    std::vector<ReadPlace> sounds_; // in the order of the data
    std::optional<ReadPlace> lastPicture_;
    std::optional<KeySample> newKey_; // until it is known when it is shown
    enum class Group { kBehindLeading, kFirstOpen };
    Group group_ = Group::kBehindLeading;
    bool hasFirstKey_ = false;
    SInt64 pictures_ = 0;
    Nanoseconds neverShown_ = 0; // pictures at the start that lack what they need
    std::shared_ptr<const std::vector<UInt8>> header_;
    Nanoseconds trimmed_ = 0; // sound that the data says is not to be played
    Nanoseconds padding_ = 0; // of that, at the end
    bool isComplete_ = false;
    bool isWaiting_ = false;
};

// The time line that fits what a stream is.
Timeline TimelineFor(StreamKind kind, const ReadPlace& begin);

} // namespace toolbox

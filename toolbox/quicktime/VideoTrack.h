// SPDX-License-Identifier: MIT
//
// The pictures of a movie: packets in, pictures with their times out, in the order of showing.
#pragma once

#include "toolbox/quicktime/KeySample.h"
#include "toolbox/quicktime/MpegPicture.h"
#include "toolbox/quicktime/TrackDecoder.h"

namespace toolbox
{

struct Picture {
    LibAVPtr<AVFrame> frame;
    Nanoseconds start = kNoTime;
    Nanoseconds end = kNoTime;
    bool isShown = false; // it has been drawn
};

class VideoTrack
{
public:
    // For a stream of which `first` is the first packet; null if there is no decoder for it.
    // `hasClock` as in Timeline: without, the pictures' durations are added up from `start` on.
    static std::unique_ptr<VideoTrack> Create(const AVStream& stream, const AVPacket& first,
                                              bool hasClock, Nanoseconds start);

    // Takes the packet's contents, its time stamps in nanoseconds.
    void Add(AVPacket& packet);
    // No more packets will come.
    void EndData() { decoder_.EndData(); }
    // The end of the last packet taken, kNoTime before one.
    Nanoseconds EndOfPackets() const { return decoder_.EndOfPackets(); }

    bool IsMpeg() const { return IsMpegVideo(decoder_.Context().codec_id); }
    // Every picture has been decoded.
    bool IsEnded() const { return decoder_.IsEnded(); }

    // Decodes on until there is a next picture.
    using Step = TrackDecoder::Step;
    Step DecodeNext();
    // While there is a next picture: decodes on until there is one more behind it.
    Step DecodeAhead();
    // Pictures wait behind the next one.
    bool HasAhead() const { return !ahead_.empty(); }
    // One more of them would not take too much memory.
    bool HasRoomAhead() const;
    // The picture to be shown now and the one after it; null if there is none (yet).
    const Picture* Current() const { return current_.frame ? &current_ : nullptr; }
    Picture* Current() { return current_.frame ? &current_ : nullptr; }
    const Picture* Next() const { return next_.frame ? &next_ : nullptr; }
    // The next picture becomes the current one; false if the one it replaces was never shown.
    bool TakeNext();
    // Makes the first picture current, decoded on the side, without waiting for those that the
    // decoder wants to see before it hands the first one out. False if that cannot be done yet.
    bool ShowFirst();
    // The current picture came from ShowFirst: the next one is the same.
    bool IsFirstOnTheSide() const { return isFirstOnTheSide_; }
    // Forgets packets and pictures but the current one, before packets from elsewhere come: those
    // before `key`, and those shown before it, are not taken.
    void Flush(const KeySample& key);

private:
    VideoTrack(LibAVPtr<AVCodecContext> decoder, bool hasClock, Nanoseconds start);
    Step DecodeInto(Picture& picture);
    void Time(Picture& picture);
    Nanoseconds DurationOf(const AVFrame& frame) const;
    bool IsPassedOver(AVPacket& packet);
    bool IsKeyLookedFor(const AVPacket& packet);
    void BeginWith(AVPacket& packet);

    TrackDecoder decoder_;
    bool hasClock_;
    LibAVPtr<AVPacket> firstKey_;
    Nanoseconds nextStart_; // the end of the picture decoded last
    Picture current_;
    Picture next_;
    std::deque<Picture> ahead_;     // behind next_
    bool isFirstOnTheSide_ = false; // current_ came from ShowFirst
    bool hasPictures_ = false;
    enum class Taking { kAll, kFromKey, kFromNextReference };
    Taking taking_ = Taking::kAll;
    KeySample key_;           // from which pictures are taken
    SInt64 picturesSeen_ = 0; // that began since the place reading began at
};

} // namespace toolbox

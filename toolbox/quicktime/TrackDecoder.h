// SPDX-License-Identifier: MIT
//
// What the tracks of pictures and of sound have in common: packets that wait for a decoder, and
// the decoder.
#pragma once

#include "toolbox/quicktime/LibAV.h"

#include <deque>

namespace toolbox
{

class TrackDecoder
{
public:
    // An opened decoder on one thread; null if there is none for `codec` or these parameters.
    static LibAVPtr<AVCodecContext> Open(AVCodecID codec, const AVCodecParameters& parameters);

    explicit TrackDecoder(LibAVPtr<AVCodecContext> decoder) : decoder_(std::move(decoder)) {}

    // Takes the packet's contents, its time stamps in nanoseconds.
    void Add(AVPacket& packet);
    // No more packets will come.
    void EndData() { dataEnded_ = true; }
    // The end of the last packet taken, kNoTime before one.
    Nanoseconds EndOfPackets() const { return endOfPackets_; }

    enum class Step { kFrame, kNeedsPacket, kEnded };
    // Decodes on until there is a frame. What the decoder refuses is skipped.
    Step Decode(AVFrame& frame);
    // Every frame has been decoded.
    bool IsEnded() const { return isEnded_; }
    // Forgets everything, before packets from elsewhere come.
    void Flush();

    const AVCodecContext& Context() const { return *decoder_; }

private:
    bool Feed();

    LibAVPtr<AVCodecContext> decoder_;
    std::deque<LibAVPtr<AVPacket>> packets_;
    Nanoseconds endOfPackets_ = kNoTime;
    bool dataEnded_ = false;
    bool isDraining_ = false;
    bool isEnded_ = false;
};

// A new frame without contents. Throws std::bad_alloc.
LibAVPtr<AVFrame> NewFrame();

} // namespace toolbox

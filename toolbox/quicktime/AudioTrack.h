// SPDX-License-Identifier: MIT
//
// The sound of a movie: packets in, 16-bit sample frames out, in order and without gaps.
#pragma once

#include "toolbox/quicktime/TrackDecoder.h"

#include <vector>

namespace toolbox
{

class AudioTrack
{
public:
    // For a stream of which `first` is the first packet; null if there is no decoder for it.
    static std::unique_ptr<AudioTrack> Create(const AVStream& stream, const AVPacket& first);

    // Takes the packet's contents, its time stamps in nanoseconds.
    void Add(AVPacket& packet) { decoder_.Add(packet); }
    // No more packets will come.
    void EndData() { decoder_.EndData(); }
    Nanoseconds EndOfPackets() const { return decoder_.EndOfPackets(); }

    // All sound has been decoded.
    bool IsEnded() const { return decoder_.IsEnded(); }

    using Step = TrackDecoder::Step;
    // Decodes on until there is sound up to `time`.
    Step DecodeUpTo(Nanoseconds time);
    // Decodes on until there is any sound.
    Step DecodeSome();
    // When the first frame sounds, kNoTime before it is decoded.
    Nanoseconds Start() const { return start_; }
    // Moves the whole sound so that its first frame sounds at `start`.
    void MoveTo(Nanoseconds start) { start_ = start; }
    // The time of the next frame to be taken, and of the first one not decoded yet.
    Nanoseconds Position() const { return start_ + FramesToTime(taken_); }
    Nanoseconds EndOfDecoded() const { return start_ + FramesToTime(taken_ + FramesWaiting()); }

    // Takes the frames that sound before `time`, `volume` (256: as they are) applied. Valid until
    // the next call. Channels() samples a frame.
    const std::vector<SInt16>& TakeUpTo(Nanoseconds time, int volume);
    // Taken frames are kept for that long, so that they can be given back.
    void KeepTaken(Nanoseconds duration);
    // Frames that were taken but sound from `time` on are taken anew, as far as they were kept.
    // Answers how many those are.
    SInt64 GiveBack(Nanoseconds time);
    int SampleRate() const { return sampleRate_; }
    int Channels() const { return channels_; }
    // After Flush, before anything is decoded: where to begin instead.
    void BeginAt(Nanoseconds start) { notBefore_ = start; }
    // Forgets everything, before packets from elsewhere come; sound before `start` is not played.
    void Flush(Nanoseconds start);

private:
    explicit AudioTrack(LibAVPtr<AVCodecContext> decoder) : decoder_(std::move(decoder)) {}
    void Append(const AVFrame& frame);
    bool PrepareResampler(const AVFrame& frame);
    void DropBeforeStart(const AVFrame& frame);
    Nanoseconds FramesToTime(SInt64 frames) const;
    SInt64 FramesWaiting() const;

    TrackDecoder decoder_;
    LibAVPtr<SwrContext> resampler_;
    AVSampleFormat inputFormat_ = AV_SAMPLE_FMT_NONE;
    int inputRate_ = 0;
    int inputChannels_ = 0;
    std::vector<SInt16> samples_; // decoded, from `consumed_` on not taken yet
    size_t consumed_ = 0;
    size_t kept_ = 0; // samples that stay when they have been taken
    std::vector<SInt16> out_;
    int sampleRate_ = 0;
    int channels_ = 0;
    Nanoseconds start_ = kNoTime;
    Nanoseconds notBefore_ = kNoTime;
    SInt64 taken_ = 0; // frames since start_
};

} // namespace toolbox

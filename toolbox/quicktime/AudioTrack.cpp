// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/AudioTrack.h"

#include <algorithm>
#include <utility>

namespace toolbox
{
namespace
{

constexpr int kMostChannels = 2;
constexpr int kFullVolume = 256;

// The layer stands in the frame header (ISO 11172-3 2.4.2.3); a systems stream does not tell it.
AVCodecID CodecOf(const AVStream& stream, const AVPacket& first)
{
    const AVCodecID id = stream.codecpar->codec_id;
    const bool isMpegAudio =
        id == AV_CODEC_ID_MP1 || id == AV_CODEC_ID_MP2 || id == AV_CODEC_ID_MP3;
    if (!isMpegAudio || first.size < 2 || first.data[0] != 0xFF) {
        return id;
    }
    switch ((first.data[1] >> 1) & 3) {
    case 3:
        return AV_CODEC_ID_MP1;
    case 2:
        return AV_CODEC_ID_MP2;
    case 1:
        return AV_CODEC_ID_MP3;
    default:
        return id;
    }
}

} // namespace

std::unique_ptr<AudioTrack> AudioTrack::Create(const AVStream& stream, const AVPacket& first)
{
    LibAVPtr<AVCodecContext> decoder = TrackDecoder::Open(CodecOf(stream, first), *stream.codecpar);
    if (!decoder) {
        return nullptr;
    }
    return std::unique_ptr<AudioTrack>(new AudioTrack(std::move(decoder)));
}

AudioTrack::Step AudioTrack::DecodeUpTo(Nanoseconds time)
{
    while (start_ == kNoTime || EndOfDecoded() < time) {
        const Step step = DecodeSome();
        if (step != Step::kFrame) {
            return step;
        }
    }
    return Step::kFrame;
}

AudioTrack::Step AudioTrack::DecodeSome()
{
    const LibAVPtr<AVFrame> frame = NewFrame();
    const Step step = decoder_.Decode(*frame);
    if (step == Step::kFrame) {
        Append(*frame);
    }
    return step;
}

// The first frame fixes rate and channels; a stream that changes them later is converted to that.
bool AudioTrack::PrepareResampler(const AVFrame& frame)
{
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const int channels = frame.ch_layout.nb_channels;
    if (resampler_ && format == inputFormat_ && frame.sample_rate == inputRate_ &&
        channels == inputChannels_) {
        return true;
    }
    if (sampleRate_ == 0) {
        sampleRate_ = frame.sample_rate;
        channels_ = std::min(channels, kMostChannels);
    }
    AVChannelLayout wanted{};
    av_channel_layout_default(&wanted, channels_);
    SwrContext* made = nullptr;
    if (swr_alloc_set_opts2(&made, &wanted, AV_SAMPLE_FMT_S16, sampleRate_,
                            const_cast<AVChannelLayout*>(&frame.ch_layout), format,
                            frame.sample_rate, 0, nullptr) < 0) {
        return false;
    }
    resampler_.reset(made);
    inputFormat_ = format;
    inputRate_ = frame.sample_rate;
    inputChannels_ = channels;
    return swr_init(made) >= 0;
}

void AudioTrack::Append(const AVFrame& frame)
{
    if (frame.sample_rate <= 0 || !PrepareResampler(frame)) {
        return;
    }
    const int room = swr_get_out_samples(resampler_.get(), frame.nb_samples);
    const auto channels = static_cast<size_t>(channels_);
    const size_t gone = consumed_ - std::min(consumed_, kept_);
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<ptrdiff_t>(gone));
    consumed_ -= gone;
    const size_t before = samples_.size();
    samples_.resize(before + static_cast<size_t>(std::max(0, room)) * channels);
    auto* to = reinterpret_cast<UInt8*>(samples_.data() + before);
    const int made = swr_convert(resampler_.get(), &to, room,
                                 const_cast<const UInt8**>(frame.extended_data), frame.nb_samples);
    samples_.resize(before + static_cast<size_t>(std::max(0, made)) * channels);
    if (start_ == kNoTime) {
        DropBeforeStart(frame);
    }
}

// The time of the very first frame is the frame's stamp; after a seek, sound before the place
// sought is decoded (layer III needs what came before) and dropped.
void AudioTrack::DropBeforeStart(const AVFrame& frame)
{
    const SInt64 stamp = frame.best_effort_timestamp;
    if (notBefore_ == kNoTime) {
        start_ = stamp != AV_NOPTS_VALUE ? stamp : 0;
        return;
    }
    if (stamp == AV_NOPTS_VALUE) {
        samples_.clear(); // the rest of what began before the place reading began at
        return;
    }
    if (stamp >= notBefore_) {
        start_ = stamp;
        return;
    }
    const SInt64 early = av_rescale(notBefore_ - stamp, sampleRate_, kSecond);
    if (early >= FramesWaiting()) {
        samples_.clear();
        return;
    }
    consumed_ = static_cast<size_t>(early) * static_cast<size_t>(channels_);
    start_ = notBefore_;
}

const std::vector<SInt16>& AudioTrack::TakeUpTo(Nanoseconds time, int volume)
{
    out_.clear();
    if (start_ == kNoTime || time <= start_) {
        return out_;
    }
    const SInt64 wanted = av_rescale(time - start_, sampleRate_, kSecond) - taken_;
    const SInt64 count = std::clamp<SInt64>(wanted, 0, FramesWaiting());
    const auto from = samples_.begin() + static_cast<ptrdiff_t>(consumed_);
    const size_t length = static_cast<size_t>(count) * static_cast<size_t>(channels_);
    out_.assign(from, from + static_cast<ptrdiff_t>(length));
    consumed_ += length;
    taken_ += count;
    if (volume < kFullVolume) {
        for (SInt16& sample : out_) {
            sample = static_cast<SInt16>(sample * volume / kFullVolume);
        }
    }
    return out_;
}

void AudioTrack::KeepTaken(Nanoseconds duration)
{
    kept_ = static_cast<size_t>(av_rescale(duration, sampleRate_, kSecond)) *
            static_cast<size_t>(channels_);
}

SInt64 AudioTrack::GiveBack(Nanoseconds time)
{
    if (start_ == kNoTime) {
        return 0;
    }
    const SInt64 before = av_rescale(std::max<Nanoseconds>(0, time - start_), sampleRate_, kSecond);
    const SInt64 kept = static_cast<SInt64>(consumed_) / channels_;
    const SInt64 count = std::clamp<SInt64>(taken_ - before, 0, std::min(kept, taken_));
    consumed_ -= static_cast<size_t>(count) * static_cast<size_t>(channels_);
    taken_ -= count;
    return count;
}

void AudioTrack::Flush(Nanoseconds start)
{
    decoder_.Flush();
    samples_.clear();
    consumed_ = 0;
    taken_ = 0;
    start_ = kNoTime;
    notBefore_ = start;
}

Nanoseconds AudioTrack::FramesToTime(SInt64 frames) const
{
    return sampleRate_ > 0 ? av_rescale(frames, kSecond, sampleRate_) : 0;
}

SInt64 AudioTrack::FramesWaiting() const
{
    return channels_ > 0 ? static_cast<SInt64>(samples_.size() - consumed_) / channels_ : 0;
}

} // namespace toolbox

// SPDX-License-Identifier: MIT
#include "viewer/SoundMixer.h"

#include "viewer/StreamConverter.h"

#include <algorithm>

namespace viewer
{
namespace
{

constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
// What comes this close to where a stream left off goes on there.
constexpr SInt64 kTolerance = 50'000;
// Sound is held back this long for streams that come later for the same time.
constexpr SInt64 kHoldBack = 4'000'000;

} // namespace

class SoundMixer::Stream
{
public:
    Stream(SInt32 sampleRate, const StreamConverter& streamConverter)
        : rate(sampleRate), converter(streamConverter)
    {
    }

    SInt32 rate;
    StreamConverter converter;
    SInt64 nextPlace = -1; // where it left off; -1 before it sounded
    SInt64 nextTime = 0;
};

SoundMixer::SoundMixer(Output output) : output_(std::move(output)) {}

SoundMixer::~SoundMixer() = default;

SoundMixer::Stream* SoundMixer::Open(SInt32 sampleRate, SInt32 channels)
{
    if (sampleRate_ == 0) {
        sampleRate_ = sampleRate;
        channels_ = channels;
        output_.begin(sampleRate, channels);
    }
    streams_.push_back(std::make_unique<Stream>(
        sampleRate, StreamConverter({sampleRate, channels}, {sampleRate_, channels_})));
    return streams_.back().get();
}

void SoundMixer::Play(Stream& stream, const SInt16* frames, SInt32 count, SInt64 atMicroseconds)
{
    const std::vector<SInt16> samples = stream.converter.Convert(frames, count);
    const SInt64 place = PlaceOf(stream, atMicroseconds);
    Add(place, samples);
    stream.nextPlace = place + static_cast<SInt64>(samples.size()) / channels_;
    stream.nextTime = atMicroseconds + count * kMicrosecondsPerSecond / stream.rate;
    WriteUpTo(EndPlace() - FramesIn(kHoldBack));
}

void SoundMixer::Close(Stream& stream)
{
    std::erase_if(streams_, [&](const auto& owned) { return owned.get() == &stream; });
}

void SoundMixer::Flush()
{
    WriteUpTo(EndPlace());
}

// A time at which nothing sounds any more starts a new stretch right behind the last one.
SInt64 SoundMixer::PlaceOf(const Stream& stream, SInt64 atMicroseconds)
{
    if (stream.nextPlace >= 0 && std::abs(atMicroseconds - stream.nextTime) <= kTolerance) {
        return std::max(stream.nextPlace, firstPlace_);
    }
    const SInt64 inStretch = FramesIn(atMicroseconds - stretchTime_);
    if (stretchPlace_ + inStretch >= EndPlace()) {
        stretchPlace_ = EndPlace();
        stretchTime_ = atMicroseconds;
        return stretchPlace_;
    }
    return std::max({stretchPlace_ + inStretch, stream.nextPlace, firstPlace_});
}

void SoundMixer::Add(SInt64 place, const std::vector<SInt16>& samples)
{
    const auto start = static_cast<size_t>((place - firstPlace_) * channels_);
    if (sums_.size() < start + samples.size()) {
        sums_.resize(start + samples.size());
    }
    for (size_t i = 0; i < samples.size(); ++i) {
        sums_[start + i] += samples[i];
    }
}

void SoundMixer::WriteUpTo(SInt64 place)
{
    if (place <= firstPlace_) {
        return;
    }
    const auto count = static_cast<size_t>((place - firstPlace_) * channels_);
    std::vector<SInt16> samples(count);
    std::transform(sums_.begin(), sums_.begin() + static_cast<ptrdiff_t>(count), samples.begin(),
                   [](SInt32 sum) {
                       return static_cast<SInt16>(std::clamp<SInt32>(sum, INT16_MIN, INT16_MAX));
                   });
    sums_.erase(sums_.begin(), sums_.begin() + static_cast<ptrdiff_t>(count));
    firstPlace_ = place;
    output_.write(samples.data(), samples.size());
}

SInt64 SoundMixer::EndPlace() const
{
    return channels_ == 0 ? 0 : firstPlace_ + static_cast<SInt64>(sums_.size()) / channels_;
}

SInt64 SoundMixer::FramesIn(SInt64 microseconds) const
{
    return microseconds * sampleRate_ / kMicrosecondsPerSecond;
}

} // namespace viewer

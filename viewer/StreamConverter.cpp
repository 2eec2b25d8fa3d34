// SPDX-License-Identifier: MIT
#include "viewer/StreamConverter.h"

#include <algorithm>
#include <numeric>

namespace viewer
{

StreamConverter::StreamConverter(SoundFormat from, SoundFormat to) : from_(from), to_(to) {}

std::vector<SInt16> StreamConverter::Convert(const SInt16* frames, SInt32 count)
{
    std::vector<SInt16> mapped = MapChannels(frames, count);
    return from_.rate == to_.rate || mapped.empty() ? mapped : Resample(mapped);
}

std::vector<SInt16> StreamConverter::MapChannels(const SInt16* frames, SInt32 count) const
{
    if (from_.channels == to_.channels) {
        return {frames, frames + static_cast<ptrdiff_t>(count) * from_.channels};
    }
    std::vector<SInt16> mapped;
    for (SInt32 i = 0; i < count; ++i, frames += from_.channels) {
        for (SInt32 channel = 0; channel < to_.channels; ++channel) {
            mapped.push_back(MappedSample(frames, channel));
        }
    }
    return mapped;
}

// One channel is the mean of all; of fewer, the last one is repeated.
SInt16 StreamConverter::MappedSample(const SInt16* frame, SInt32 channel) const
{
    if (to_.channels == 1) {
        return static_cast<SInt16>(std::accumulate(frame, frame + from_.channels, SInt32{0}) /
                                   from_.channels);
    }
    return frame[std::min(channel, from_.channels - 1)];
}

std::vector<SInt16> StreamConverter::Resample(const std::vector<SInt16>& frames)
{
    const auto channels = static_cast<size_t>(to_.channels);
    if (last_.empty()) {
        last_.assign(frames.begin(), frames.begin() + to_.channels);
        position_ = to_.rate; // exactly on the first frame
    }
    const auto sampleAt = [&](size_t frame, size_t channel) -> SInt64 {
        return frame == 0 ? last_[channel] : frames[(frame - 1) * channels + channel];
    };
    const SInt64 end = static_cast<SInt64>(frames.size() / channels) * to_.rate;
    std::vector<SInt16> out;
    for (; position_ <= end; position_ += from_.rate) {
        const auto frame = static_cast<size_t>(position_ / to_.rate);
        const SInt64 fraction = position_ % to_.rate;
        for (size_t channel = 0; channel < channels; ++channel) {
            const SInt64 here = sampleAt(frame, channel);
            const SInt64 next = fraction == 0 ? here : sampleAt(frame + 1, channel);
            out.push_back(static_cast<SInt16>(here + (next - here) * fraction / to_.rate));
        }
    }
    position_ -= end;
    last_.assign(frames.end() - to_.channels, frames.end());
    return out;
}

} // namespace viewer

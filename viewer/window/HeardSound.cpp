// SPDX-License-Identifier: MIT
#include "viewer/window/HeardSound.h"

#include <algorithm>

namespace viewer
{

SoundStream* HeardSound::Open(SInt32 sampleRate, SInt32 channels)
{
    const SoundFormat format = {sampleRate, channels};
    const std::lock_guard<std::mutex> lock(mutex_);
    if (format_.rate == 0) {
        format_ = format;
    }
    streams_.push_back(std::make_unique<SoundStream>(format, format_));
    return streams_.back().get();
}

void HeardSound::Play(SoundStream& stream, const SInt16* frames, SInt32 count, SInt64 at)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    stream.Add(frames, count, at);
}

void HeardSound::Recall(SoundStream& stream, SInt64 at)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    stream.Recall(at);
}

void HeardSound::SetVolume(SoundStream& stream, SInt32 volume)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    stream.SetVolume(volume);
}

void HeardSound::Close(SoundStream& stream)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    stream.End();
}

bool HeardSound::IsSilent()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::all_of(streams_.begin(), streams_.end(),
                       [](const auto& stream) { return stream->IsSilent(); });
}

void HeardSound::Tend(WindowClock& clock)
{
    const bool isSilent = IsSilent();
    const std::lock_guard<std::mutex> lock(mutex_);
    if (isSilent || ahead_) {
        clock.Correct(isSilent ? 0 : *ahead_);
        ahead_.reset();
    }
    line_ = clock.Line();
}

void HeardSound::Fill(SInt16* samples, size_t frames, SInt64 heardAt)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const SInt64 pageTime = line_.At(heardAt);
    if (const std::optional<SInt64> due = DueTime()) {
        ahead_ = pageTime - *due;
    }
    sums_.assign(frames * static_cast<size_t>(format_.channels), 0);
    for (const auto& stream : streams_) {
        stream->Mix(sums_.data(), frames, pageTime);
    }
    std::transform(sums_.begin(), sums_.end(), samples, [](SInt32 sum) {
        return static_cast<SInt16>(std::clamp<SInt32>(sum, INT16_MIN, INT16_MAX));
    });
    std::erase_if(streams_, [](const auto& stream) { return stream->IsEnded(); });
}

// The stream that sounds first leads.
std::optional<SInt64> HeardSound::DueTime() const
{
    for (const auto& stream : streams_) {
        if (const std::optional<SInt64> due = stream->DueTime()) {
            return due;
        }
    }
    return std::nullopt;
}

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/window/SoundStream.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace viewer
{
namespace
{

constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
constexpr SInt32 kRampsPerSecond = 200; // 5 milliseconds each
// What is gathered besides one piece: the device's own portion and how late a piece may be.
constexpr SInt64 kFirstLead = 40'000;
constexpr SInt64 kLeadStep = 20'000;
constexpr SInt64 kMostLead = 300'000;
// Pieces whose times differ by more than rounding do not belong together.
constexpr SInt64 kTolerance = 1000;

// `part` of `whole` of a sample.
SInt16 Faded(SInt16 sample, size_t part, size_t whole)
{
    return static_cast<SInt16>(SInt64{sample} * static_cast<SInt64>(part) /
                               static_cast<SInt64>(whole));
}

} // namespace

SoundStream::SoundStream(SoundFormat from, SoundFormat to)
    : from_(from), to_(to), converter_(from, to), lead_(kFirstLead)
{
}

void SoundStream::Add(const SInt16* frames, SInt32 count, SInt64 atMicroseconds)
{
    std::vector<SInt16> piece = converter_.Convert(frames, count);
    largestPiece_ = std::max(largestPiece_, piece.size() / static_cast<size_t>(to_.channels));
    const bool follows = nextTime_ && std::abs(atMicroseconds - *nextTime_) <= kTolerance;
    const bool wasDry = std::exchange(ranDry_, false);
    if (!follows) {
        Splice(piece);
    } else if (wasDry) {
        lead_ = std::min(lead_ + kLeadStep, kMostLead);
    }
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<ptrdiff_t>(head_));
    head_ = 0;
    samples_.insert(samples_.end(), piece.begin(), piece.end());
    nextTime_ = atMicroseconds + count * kMicrosecondsPerSecond / from_.rate;
}

// What waits ends with a ramp, and what follows begins with one.
void SoundStream::Splice(std::vector<SInt16>& following)
{
    ++generation_;
    if (Frames() == 0) {
        return;
    }
    FadeOut(Frames());
    const auto channels = static_cast<size_t>(to_.channels);
    const size_t ramp = std::min(RampFrames(), following.size() / channels);
    for (size_t i = 0; i < ramp * channels; ++i) {
        following[i] = Faded(following[i], i / channels, ramp);
    }
}

// The frames before `end`, counted from the next one to leave.
void SoundStream::FadeOut(size_t end)
{
    const auto channels = static_cast<size_t>(to_.channels);
    const size_t ramp = std::min(RampFrames(), end);
    SInt16* const first = samples_.data() + head_ + (end - ramp) * channels;
    for (size_t i = 0; i < ramp * channels; ++i) {
        first[i] = Faded(first[i], ramp - 1 - i / channels, ramp);
    }
}

void SoundStream::Mix(SInt32* sums, size_t frames)
{
    if (!isSounding_ && !MayStart(frames)) {
        return;
    }
    if (Frames() >= frames + RampFrames()) {
        Take(sums, frames);
        return;
    }
    const size_t rest = std::min(Frames(), frames);
    FadeOut(rest);
    Take(sums, rest);
    RunDry();
}

// Sound that is shorter than what is gathered sounds when that time has passed.
bool SoundStream::MayStart(size_t frames)
{
    if (Frames() == 0) {
        return false;
    }
    waited_ += frames;
    isSounding_ = isEnded_ || Frames() >= LeadFrames() || waited_ > LeadFrames();
    if (isSounding_) {
        faded_ = 0;
        ++generation_;
    }
    return isSounding_;
}

void SoundStream::Take(SInt32* sums, size_t frames)
{
    const auto channels = static_cast<size_t>(to_.channels);
    const size_t ramp = RampFrames();
    for (size_t frame = 0; frame < frames; ++frame) {
        for (size_t channel = 0; channel < channels; ++channel) {
            const SInt16 sample = samples_[head_ + frame * channels + channel];
            sums[frame * channels + channel] +=
                faded_ < ramp ? Faded(sample, faded_, ramp) : sample;
        }
        faded_ += faded_ < ramp ? 1 : 0;
    }
    head_ += frames * channels;
}

void SoundStream::RunDry()
{
    samples_.clear();
    head_ = 0;
    waited_ = 0;
    isSounding_ = false;
    ranDry_ = true;
    ++generation_;
}

void SoundStream::End()
{
    isEnded_ = true;
    const auto channels = static_cast<size_t>(to_.channels);
    if (!isSounding_) {
        RunDry();
    } else if (Frames() > RampFrames()) {
        samples_.resize(head_ + RampFrames() * channels);
    }
}

std::optional<SInt64> SoundStream::PlayingTime() const
{
    if (!isSounding_ || !nextTime_) {
        return std::nullopt;
    }
    return *nextTime_ - DurationOf(Frames());
}

size_t SoundStream::RampFrames() const
{
    return static_cast<size_t>(std::max(1, to_.rate / kRampsPerSecond));
}

size_t SoundStream::Frames() const
{
    return (samples_.size() - head_) / static_cast<size_t>(to_.channels);
}

size_t SoundStream::LeadFrames() const
{
    return largestPiece_ + static_cast<size_t>(lead_ * to_.rate / kMicrosecondsPerSecond);
}

SInt64 SoundStream::DurationOf(size_t frames) const
{
    return static_cast<SInt64>(frames) * kMicrosecondsPerSecond / to_.rate;
}

} // namespace viewer

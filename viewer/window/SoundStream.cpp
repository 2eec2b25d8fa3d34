// SPDX-License-Identifier: MIT
#include "viewer/window/SoundStream.h"

#include "toolbox/CpuVersions.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace viewer
{
namespace
{

constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
constexpr SInt32 kRampsPerSecond = 200; // 5 milliseconds each
// Pieces whose times differ by more than rounding do not belong together.
constexpr SInt64 kTolerance = 1000;
// Sound that is later than this, or that far from its time by and by, is brought back to it.
// Whatever is less the page's clock makes up for.
constexpr SInt64 kMostDeviation = 15'000;
// A device that stands still takes nothing; more than this is not kept for it.
constexpr SInt64 kMostWaiting = 3 * kMicrosecondsPerSecond;
constexpr SInt32 kFullVolume = 256;
constexpr SInt32 kFullLoudness = 1 << 16;

VORN_CPU_VERSIONS void AddUp(SInt32* sums, const SInt16* samples, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        sums[i] += samples[i];
    }
}

// `part` of `whole` of a sample.
SInt16 Faded(SInt16 sample, size_t part, size_t whole)
{
    return static_cast<SInt16>(SInt64{sample} * static_cast<SInt64>(part) /
                               static_cast<SInt64>(whole));
}

} // namespace

SoundStream::SoundStream(SoundFormat from, SoundFormat to)
    : from_(from), to_(to), converter_(from, to), loudness_(kFullLoudness),
      wantedLoudness_(kFullLoudness)
{
}

void SoundStream::Add(const SInt16* frames, SInt32 count, SInt64 at)
{
    const bool follows =
        !stretches_.empty() && !stretches_.back().isFaded && std::abs(at - nextTime_) <= kTolerance;
    if (!follows) {
        if (!stretches_.empty()) {
            FadeOut(stretches_.back());
        }
        converter_ = StreamConverter(from_, to_);
        stretches_.emplace_back().start = at;
    }
    Stretch& stretch = stretches_.back();
    stretch.samples.erase(stretch.samples.begin(),
                          stretch.samples.begin() + static_cast<ptrdiff_t>(stretch.head));
    stretch.head = 0;
    const std::vector<SInt16> piece = converter_.Convert(frames, count);
    stretch.samples.insert(stretch.samples.end(), piece.begin(), piece.end());
    nextTime_ = at + count * kMicrosecondsPerSecond / from_.rate;
    if (DurationOf(Waiting(stretch)) > kMostWaiting) {
        Recall(INT64_MIN);
    }
}

// What sounds goes on for as long as it takes to fade out.
void SoundStream::Recall(SInt64 at)
{
    while (!stretches_.empty()) {
        Stretch& last = stretches_.back();
        const bool sounds = isSounding_ && stretches_.size() == 1;
        const SInt64 due = DueTime(last);
        const size_t before = at <= due ? 0 : FramesIn(at - due);
        if (before >= Waiting(last)) {
            return;
        }
        Cut(last, std::max(before, sounds ? RampFrames() : 0));
        if (Waiting(last) > 0) {
            return;
        }
        stretches_.pop_back();
        isSounding_ = isSounding_ && !stretches_.empty();
    }
}

// What is longer than that ends there, with a ramp.
void SoundStream::Cut(Stretch& stretch, size_t frames)
{
    const bool endsSoon = stretch.isFaded && Waiting(stretch) <= frames + RampFrames();
    if (frames < Waiting(stretch) && (!endsSoon || frames == 0)) {
        stretch.samples.resize(stretch.head + frames * static_cast<size_t>(to_.channels));
        stretch.isFaded = false;
    }
    FadeOut(stretch);
}

void SoundStream::FadeOut(Stretch& stretch)
{
    if (std::exchange(stretch.isFaded, true)) {
        return;
    }
    const auto channels = static_cast<size_t>(to_.channels);
    const size_t ramp = std::min(RampFrames(), Waiting(stretch));
    SInt16* const first = stretch.samples.data() + stretch.samples.size() - ramp * channels;
    for (size_t i = 0; i < ramp * channels; ++i) {
        first[i] = Faded(first[i], ramp - 1 - i / channels, ramp);
    }
}

void SoundStream::SetVolume(SInt32 volume)
{
    wantedLoudness_ = std::clamp(volume, 0, kFullVolume) * (kFullLoudness / kFullVolume);
}

void SoundStream::Mix(SInt32* sums, size_t frames, SInt64 heardAt)
{
    const auto channels = static_cast<size_t>(to_.channels);
    for (size_t done = 0; done < frames && !stretches_.empty();) {
        const SInt64 now = heardAt + DurationOf(done);
        done += isSounding_ ? Sound(sums + done * channels, now, frames - done)
                            : Await(now, frames - done);
    }
}

// How many frames of silence there are before the first stretch begins. One that is late begins
// where it would be by now.
size_t SoundStream::Await(SInt64 heardAt, size_t frames)
{
    Stretch& stretch = stretches_.front();
    const SInt64 wait = DueTime(stretch) - heardAt;
    if (wait < -kMostDeviation) {
        Drop(stretch, FramesIn(-wait));
    }
    if (Waiting(stretch) == 0) {
        stretches_.pop_front();
        return 0;
    }
    const size_t silence = wait > 0 ? FramesIn(wait) : 0;
    if (silence >= frames) {
        return frames;
    }
    isSounding_ = true;
    faded_ = 0;
    loudness_ = wantedLoudness_;
    return silence;
}

// How many frames there were.
size_t SoundStream::Sound(SInt32* sums, SInt64 heardAt, size_t frames)
{
    const SInt64 late = heardAt - DueTime(stretches_.front());
    if (std::abs(late) > kMostDeviation && !stretches_.front().isFaded) {
        ComeBackToTime(late);
    }
    // The end is known only when nothing is left: a ramp is held back for it.
    Stretch& stretch = stretches_.front();
    if (Waiting(stretch) < frames + RampFrames()) {
        FadeOut(stretch);
    }
    const size_t count = std::min(frames, Waiting(stretch));
    Take(stretch, sums, count);
    if (Waiting(stretch) == 0) {
        stretches_.pop_front();
        isSounding_ = false;
    }
    return count;
}

// The first stretch ends, and what is not late in it becomes one of its own.
void SoundStream::ComeBackToTime(SInt64 late)
{
    Stretch& first = stretches_.front();
    Stretch rest = first;
    Drop(rest, RampFrames() + (late > 0 ? FramesIn(late) : 0));
    rest.start = DueTime(rest);
    rest.left = 0;
    Cut(first, RampFrames());
    if (Waiting(rest) > 0) {
        stretches_.insert(stretches_.begin() + 1, std::move(rest));
    }
}

void SoundStream::Drop(Stretch& stretch, size_t frames) const
{
    const size_t count = std::min(frames, Waiting(stretch));
    stretch.head += count * static_cast<size_t>(to_.channels);
    stretch.left += count;
}

void SoundStream::Take(Stretch& stretch, SInt32* sums, size_t frames)
{
    const auto channels = static_cast<size_t>(to_.channels);
    const size_t ramp = RampFrames();
    const SInt32 step = kFullLoudness / static_cast<SInt32>(ramp) + 1;
    const SInt16* sample = stretch.samples.data() + stretch.head;
    const bool isAsItIs =
        faded_ >= ramp && loudness_ == kFullLoudness && wantedLoudness_ == kFullLoudness;
    if (isAsItIs) {
        AddUp(sums, sample, frames * channels);
        Drop(stretch, frames);
        return;
    }
    for (size_t frame = 0; frame < frames; ++frame) {
        loudness_ += std::clamp(wantedLoudness_ - loudness_, -step, step);
        for (size_t channel = 0; channel < channels; ++channel, ++sample, ++sums) {
            const auto loud = static_cast<SInt16>(SInt64{*sample} * loudness_ / kFullLoudness);
            *sums += faded_ < ramp ? Faded(loud, faded_, ramp) : loud;
        }
        faded_ += faded_ < ramp ? 1 : 0;
    }
    Drop(stretch, frames);
}

void SoundStream::End()
{
    isEnded_ = true;
    Recall(INT64_MIN);
}

std::optional<SInt64> SoundStream::DueTime() const
{
    return isSounding_ ? std::optional<SInt64>(DueTime(stretches_.front())) : std::nullopt;
}

SInt64 SoundStream::DueTime(const Stretch& stretch) const
{
    return stretch.start + DurationOf(stretch.left);
}

size_t SoundStream::RampFrames() const
{
    return static_cast<size_t>(std::max(1, to_.rate / kRampsPerSecond));
}

size_t SoundStream::Waiting(const Stretch& stretch) const
{
    return (stretch.samples.size() - stretch.head) / static_cast<size_t>(to_.channels);
}

SInt64 SoundStream::DurationOf(size_t frames) const
{
    return static_cast<SInt64>(frames) * kMicrosecondsPerSecond / to_.rate;
}

size_t SoundStream::FramesIn(SInt64 duration) const
{
    return static_cast<size_t>(duration * to_.rate / kMicrosecondsPerSecond);
}

} // namespace viewer

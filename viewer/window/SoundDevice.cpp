// SPDX-License-Identifier: MIT
#include "viewer/window/SoundDevice.h"

#include "toolbox/quicktime/Movies.h"
#include "viewer/Console.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace viewer
{
namespace
{

// 1024 frames at 44.1 kHz: a wake-up every 23 milliseconds.
constexpr Uint16 kPortionFrames = 1024;
// Opening a device takes some milliseconds: it stays open for a short pause.
constexpr SInt64 kRestAfter = 1'000'000;
// More than this is no drift: the device has stood still.
constexpr SInt64 kMostDrift = 250'000;

} // namespace

SoundDevice::SoundDevice()
{
    const ToolboxSoundSink sink = {OpenStream, PlayStream, CloseStream, this};
    SetSoundSink(&sink);
}

SoundDevice::~SoundDevice()
{
    SetSoundSink(nullptr);
    CloseDevice();
}

void* SoundDevice::OpenStream(void* self, SInt32 sampleRate, SInt32 channels)
{
    auto& device = *static_cast<SoundDevice*>(self);
    if (device.format_.rate == 0) {
        device.format_ = {sampleRate, channels};
    }
    const std::lock_guard<std::mutex> lock(device.mutex_);
    device.streams_.push_back(
        std::make_unique<SoundStream>(SoundFormat{sampleRate, channels}, device.format_));
    return device.streams_.back().get();
}

void SoundDevice::PlayStream(void* self, void* stream, const SInt16* frames, SInt32 count,
                             SInt64 atMicroseconds)
{
    auto& device = *static_cast<SoundDevice*>(self);
    if (!device.OpenDevice()) {
        return;
    }
    device.silentSince_.reset();
    const std::lock_guard<std::mutex> lock(device.mutex_);
    static_cast<SoundStream*>(stream)->Add(frames, count, atMicroseconds);
}

void SoundDevice::CloseStream(void* self, void* stream)
{
    const std::lock_guard<std::mutex> lock(static_cast<SoundDevice*>(self)->mutex_);
    static_cast<SoundStream*>(stream)->End();
}

// Sound is nothing to fail for: it is told once, and pictures go on.
bool SoundDevice::OpenDevice()
{
    if (device_ != 0 || hasFailed_) {
        return device_ != 0;
    }
    SDL_AudioSpec wanted{};
    wanted.freq = format_.rate;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = static_cast<Uint8>(format_.channels);
    wanted.samples = kPortionFrames;
    wanted.callback = FillPortion;
    wanted.userdata = this;
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) == 0) {
        device_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    }
    if (device_ == 0) {
        hasFailed_ = true;
        Console::Tell("", std::string("no sound can be heard: ") + SDL_GetError());
        return false;
    }
    SDL_PauseAudioDevice(device_, 0);
    return true;
}

void SoundDevice::CloseDevice()
{
    if (device_ != 0) {
        SDL_CloseAudioDevice(device_);
        device_ = 0;
        nextTime_.reset();
        silentSince_.reset();
    }
}

void SoundDevice::FillPortion(void* self, Uint8* bytes, int count)
{
    std::memset(bytes, 0, static_cast<size_t>(count));
    static_cast<SoundDevice*>(self)->Fill(reinterpret_cast<SInt16*>(bytes),
                                          static_cast<size_t>(count) / sizeof(SInt16));
}

void SoundDevice::Fill(SInt16* samples, size_t count)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    Read();
    sums_.assign(count, 0);
    for (const auto& stream : streams_) {
        stream->Mix(sums_.data(), count / static_cast<size_t>(format_.channels));
    }
    std::transform(sums_.begin(), sums_.end(), samples, [](SInt32 sum) {
        return static_cast<SInt16>(std::clamp<SInt32>(sum, INT16_MIN, INT16_MAX));
    });
    std::erase_if(streams_, [](const auto& stream) { return stream->IsEnded(); });
}

// The stream that sounds first leads.
void SoundDevice::Read()
{
    reading_.reset();
    for (const auto& stream : streams_) {
        if (const std::optional<SInt64> playing = stream->PlayingTime()) {
            reading_ =
                Reading{stream.get(), stream->Generation(), *playing, WindowClock::RealNow()};
            return;
        }
    }
}

void SoundDevice::Tend(WindowClock& clock)
{
    if (device_ == 0) {
        return;
    }
    const SInt64 now = WindowClock::RealNow();
    std::optional<Reading> reading;
    bool isSilent = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        reading.swap(reading_);
        isSilent = IsSilent();
    }
    if (reading) {
        Lead(clock, *reading);
    }
    if (!isSilent) {
        silentSince_.reset();
    } else if (!silentSince_) {
        silentSince_ = now;
        clock.Correct(0, now);
    }
    nextTime_ = silentSince_.value_or(now) + kRestAfter;
    if (now >= *nextTime_) {
        CloseDevice();
    }
}

void SoundDevice::Lead(WindowClock& clock, const Reading& reading)
{
    const SInt64 lag = clock.At(reading.realTime) - reading.playing;
    const bool isSame = reading.stream == base_.stream && reading.generation == base_.generation;
    if (!isSame || std::abs(lag - lag_) > kMostDrift) {
        base_ = reading;
        lag_ = lag;
    }
    clock.Correct(lag - lag_, WindowClock::RealNow());
}

bool SoundDevice::IsSilent() const
{
    return std::all_of(streams_.begin(), streams_.end(),
                       [](const auto& stream) { return stream->IsSilent(); });
}

} // namespace viewer

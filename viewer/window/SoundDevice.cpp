// SPDX-License-Identifier: MIT
#include "viewer/window/SoundDevice.h"

#include "toolbox/quicktime/Movies.h"
#include "viewer/Console.h"

namespace viewer
{
namespace
{

constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
// At 44.1 kHz a wake-up every 46 milliseconds: fewer cost less, and what a pause cannot take back,
// up to two portions, is not yet felt.
constexpr Uint16 kPortionFrames = 2048;
// How late the device's thread may be.
constexpr SInt64 kMargin = 20'000;
// Opening a device takes some milliseconds: it stays open for a short pause.
constexpr SInt64 kRestAfter = kMicrosecondsPerSecond;
// How long it may take until what is left has faded out, in milliseconds.
constexpr Uint32 kFadingLook = 5;
constexpr int kMostFadingLooks = 20;

SoundStream& StreamOf(void* stream)
{
    return *static_cast<SoundStream*>(stream);
}

} // namespace

SoundDevice::SoundDevice()
{
    ToolboxSoundSink sink{};
    sink.refCon = this;
    sink.open = [](void* self, SInt32 sampleRate, SInt32 channels) -> void* {
        return Self(self).sound_.Open(sampleRate, channels);
    };
    sink.prepare = [](void* self, void*) { return Self(self).Prepare(); };
    sink.play = [](void* self, void* stream, const SInt16* frames, SInt32 count, SInt64 at) {
        if (Self(self).IsOpen()) {
            Self(self).silentSince_.reset();
            Self(self).sound_.Play(StreamOf(stream), frames, count, at);
        }
    };
    sink.recall = [](void* self, void* stream, SInt64 at) {
        Self(self).sound_.Recall(StreamOf(stream), at);
    };
    sink.setVolume = [](void* self, void* stream, SInt32 volume) {
        Self(self).sound_.SetVolume(StreamOf(stream), volume);
    };
    sink.close = [](void* self, void* stream) { Self(self).sound_.Close(StreamOf(stream)); };
    SetSoundSink(&sink);
}

SoundDevice::~SoundDevice()
{
    SetSoundSink(nullptr);
    for (int i = 0; i < kMostFadingLooks && IsOpen() && !sound_.IsSilent(); ++i) {
        SDL_Delay(kFadingLook);
    }
    Close();
}

// What is given now is asked for with the next portion but for a whole one, and heard when the one
// before has been.
SInt64 SoundDevice::Prepare()
{
    silentSince_.reset();
    return Open() ? 2 * portionTime_ + kMargin : 0;
}

// Sound is nothing to fail for: it is told once, and pictures go on.
bool SoundDevice::Open()
{
    if (IsOpen() || hasFailed_) {
        return IsOpen();
    }
    const SoundFormat& format = sound_.Format();
    SDL_AudioSpec wanted{};
    wanted.freq = format.rate;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = static_cast<Uint8>(format.channels);
    wanted.samples = kPortionFrames;
    wanted.callback = FillPortion;
    wanted.userdata = this;
    portionTime_ = kPortionFrames * kMicrosecondsPerSecond / format.rate;
    times_.emplace(portionTime_);
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) == 0) {
        device_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    }
    if (!IsOpen()) {
        hasFailed_ = true;
        Console::Tell("", std::string("no sound can be heard (") + SDL_GetError() +
                              "): movies play without it");
        return false;
    }
    SDL_PauseAudioDevice(device_, 0);
    return true;
}

void SoundDevice::Close()
{
    if (IsOpen()) {
        SDL_CloseAudioDevice(device_);
        device_ = 0;
        nextTime_.reset();
        silentSince_.reset();
    }
}

void SoundDevice::FillPortion(void* refCon, Uint8* bytes, int count)
{
    SoundDevice& self = Self(refCon);
    const auto frames = static_cast<size_t>(count / (self.sound_.Format().channels * 2));
    const SInt64 heardAt = self.times_->Next(WindowClock::RealNow(), self.portionTime_);
    self.sound_.Fill(reinterpret_cast<SInt16*>(bytes), frames, heardAt);
}

void SoundDevice::Tend(WindowClock& clock)
{
    sound_.Tend(clock);
    if (!IsOpen()) {
        return;
    }
    const SInt64 now = WindowClock::RealNow();
    if (!sound_.IsSilent()) {
        silentSince_.reset();
    } else if (!silentSince_) {
        silentSince_ = now;
    }
    nextTime_ = silentSince_.value_or(now) + kRestAfter;
    if (now >= *nextTime_) {
        Close();
    }
}

} // namespace viewer

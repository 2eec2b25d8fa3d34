// SPDX-License-Identifier: MIT
#include "viewer/SoundFile.h"

#include <stdexcept>

namespace viewer
{
namespace
{

constexpr SInt32 kRateOfSilence = 44100;
constexpr SInt32 kChannelsOfSilence = 2;

} // namespace

SoundFile::SoundFile(const std::string& path)
    : path_(path),
      mixer_({[this](SInt32 sampleRate, SInt32 channels) {
                  wav_ = std::make_unique<WavWriter>(path_, sampleRate, channels);
              },
              [this](const SInt16* samples, size_t count) { wav_->Write(samples, count); }})
{
    ToolboxSoundSink sink{};
    sink.open = Open;
    sink.play = Play;
    sink.close = Close;
    sink.refCon = this;
    SetSoundSink(&sink);
}

SoundFile::~SoundFile()
{
    SetSoundSink(nullptr);
}

template <typename Action>
void SoundFile::Guard(Action action)
{
    if (!failure_.empty()) {
        return;
    }
    try {
        action();
    } catch (const std::exception& problem) {
        failure_ = problem.what();
    }
}

void* SoundFile::Open(void* file, SInt32 sampleRate, SInt32 channels)
{
    auto& self = *static_cast<SoundFile*>(file);
    SoundMixer::Stream* stream = nullptr;
    self.Guard([&] { stream = self.mixer_.Open(sampleRate, channels); });
    return stream;
}

void SoundFile::Play(void* file, void* stream, const SInt16* frames, SInt32 count,
                     SInt64 atMicroseconds)
{
    auto& self = *static_cast<SoundFile*>(file);
    if (stream != nullptr) {
        self.Guard([&] {
            self.mixer_.Play(*static_cast<SoundMixer::Stream*>(stream), frames, count,
                             atMicroseconds);
        });
    }
}

void SoundFile::Close(void* file, void* stream)
{
    if (stream != nullptr) {
        static_cast<SoundFile*>(file)->mixer_.Close(*static_cast<SoundMixer::Stream*>(stream));
    }
}

void SoundFile::Finish()
{
    Guard([this] {
        isEmpty_ = wav_ == nullptr;
        if (isEmpty_) {
            wav_ = std::make_unique<WavWriter>(path_, kRateOfSilence, kChannelsOfSilence);
        }
        mixer_.Flush();
        wav_->Close();
    });
    if (!failure_.empty()) {
        throw std::runtime_error(failure_);
    }
}

} // namespace viewer

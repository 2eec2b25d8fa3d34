// SPDX-License-Identifier: MIT
//
// A movie's sound on its way to the host's sink.
#include "toolbox/quicktime/Movie.h"
#include "toolbox/quicktime/SoundOutput.h"

#include <algorithm>

using namespace toolbox;

namespace
{

constexpr Nanoseconds kPerMicrosecond = 1000;
// Sound that is given ahead is given for this long more, so that work of other kinds may take its
// time.
constexpr Nanoseconds kSoundReserve = kSecond / 4;
// Then it is decoded and given for as long again, which costs less than a little at every picture.
constexpr Nanoseconds kSoundBurst = kSecond / 4;
// A movie that ran out of bytes goes on when there is sound for this long.
constexpr Nanoseconds kRefill = kSecond / 4;
constexpr int kFullVolume = 256;

} // namespace

void MovieRecord::PlaySoundUpTo(Nanoseconds time)
{
    if (!audio_ || audio_->Start() == kNoTime) {
        return;
    }
    const Nanoseconds position = audio_->Position();
    const std::vector<SInt16>& samples =
        audio_->TakeUpTo(std::min(time, index_->StartOfPadding()),
                         SoundSink().setVolume != nullptr ? kFullVolume : volume_);
    if (samples.empty()) {
        return;
    }
    const auto count =
        static_cast<SInt32>(samples.size() / static_cast<size_t>(audio_->Channels()));
    soundFrames_ += count;
    OpenSound();
    const ToolboxSoundSink& sink = SoundSink();
    if (sound_ != nullptr && sink.play != nullptr) {
        sink.play(sink.refCon, sound_, samples.data(), count, ClockAt(position));
    }
}

void MovieRecord::OpenSound()
{
    const ToolboxSoundSink& sink = SoundSink();
    if (!isSoundOpen_ && sink.open != nullptr) {
        sound_ = sink.open(sink.refCon, audio_->SampleRate(), audio_->Channels());
        isSoundOpen_ = true;
        SetVolume(volume_);
    }
}

SInt64 MovieRecord::ClockAt(Nanoseconds time) const
{
    return anchorClock_ + (time - anchorTime_) / kPerMicrosecond;
}

bool MovieRecord::MustPrepareSink() const
{
    return !isSinkPrepared_ && SoundSink().prepare != nullptr && audio_ &&
           audio_->Start() != kNoTime;
}

// Sound that is sent now is heard a little later: that is when time begins to run.
void MovieRecord::BeginSound()
{
    OpenSound();
    isSinkPrepared_ = true;
    const ToolboxSoundSink& sink = SoundSink();
    const SInt64 lead = sound_ != nullptr ? sink.prepare(sink.refCon, sound_) : 0;
    soundLead_ = std::max<SInt64>(0, lead) * kPerMicrosecond;
    audio_->KeepTaken(soundLead_ > 0 ? soundLead_ + kSoundReserve + kSoundBurst : 0);
    Anchor(time_);
    anchorClock_ += soundLead_ / kPerMicrosecond;
}

// Going on with next to nothing would only mean to stop again.
bool MovieRecord::IsRefilled()
{
    return PrepareSound(time_ + kRefill) >= time_ + kRefill;
}

// What is there of the sound that is not due yet, for a sink that wants it.
void MovieRecord::PlaySoundAhead()
{
    if (!audio_ || soundLead_ == 0) {
        return;
    }
    const Nanoseconds begun =
        anchorTime_ + (ToolboxMicroseconds() - anchorClock_) * kPerMicrosecond;
    const Nanoseconds least = begun + soundLead_ + kSoundReserve;
    if (audio_->Start() != kNoTime && audio_->Position() >= least) {
        return;
    }
    const Nanoseconds end = least + kSoundBurst;
    while (audio_->DecodeUpTo(end) == AudioTrack::Step::kNeedsPacket) {
        if (PullPacket() == Step::kWaiting) {
            break;
        }
    }
    PlaySoundUpTo(end);
}

// What was given for later than now is taken back.
void MovieRecord::RecallSound()
{
    if (!isPlaying_ || soundLead_ == 0 || audio_->Start() == kNoTime) {
        return;
    }
    isSinkPrepared_ = false;
    soundFrames_ -= audio_->GiveBack(time_);
    const ToolboxSoundSink& sink = SoundSink();
    if (sound_ != nullptr && sink.recall != nullptr) {
        sink.recall(sink.refCon, sound_, ClockAt(audio_->Position()));
    }
}

void MovieRecord::CloseSound()
{
    const ToolboxSoundSink& sink = SoundSink();
    if (sound_ != nullptr && sink.close != nullptr) {
        sink.close(sink.refCon, sound_);
    }
    sound_ = nullptr;
    isSoundOpen_ = false;
}

void MovieRecord::SetVolume(int volume)
{
    volume_ = std::clamp(volume, 0, kFullVolume);
    const ToolboxSoundSink& sink = SoundSink();
    if (sound_ != nullptr && sink.setVolume != nullptr) {
        sink.setVolume(sink.refCon, sound_, volume_);
    }
}

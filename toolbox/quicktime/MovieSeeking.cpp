// SPDX-License-Identifier: MIT
//
// A movie going elsewhere than its time would take it.
#include "toolbox/quicktime/Movie.h"
#include "toolbox/quicktime/ProgramStreamMap.h"

#include <algorithm>

using namespace toolbox;

void MovieRecord::GoTo(Nanoseconds time)
{
    if (!isPlayable_ || isStopped_) {
        return;
    }
    RecallSound();
    const Nanoseconds wanted =
        beginning_ + std::clamp<Nanoseconds>(time, 0, std::max<Nanoseconds>(0, LoadedDuration()));
    Restart(index_->FindKey(wanted));
    if (audio_) {
        audio_->Flush(wanted);
    }
    isAtEnd_ = index_->IsComplete() && time >= LoadedDuration();
    ShowPictureAt(wanted);
    Anchor(wanted);
}

// libavformat finds out what a systems stream's pictures are from their first bytes, and from
// those in mid-data wrongly.
std::vector<UInt8> MovieRecord::PrologueFor(const Sniffed& start) const
{
    const bool isMpegInProgram = start.kind == StreamKind::kProgramStream && video_ &&
                                 videoId_.has_value() && video_->IsMpeg();
    return isMpegInProgram ? MakeProgramStreamMap(static_cast<UInt8>(*videoId_ & 0xFF))
                           : std::vector<UInt8>();
}

// Begins to read at another place.
void MovieRecord::Restart(const KeySample& key)
{
    const Sniffed start = {play_->Start().kind, std::max(opened_, key.from.position)};
    play_->Abandon();
    play_ = std::make_unique<MovieStream>(*handler_, start, PrologueFor(start));
    begin_ = key.from;
    hasTimeline_ = false;
    dataEnded_ = outOfBytes_ = false;
    if (video_) {
        video_->Flush(key);
    }
}

void MovieRecord::ShowPictureAt(Nanoseconds time)
{
    if (!video_) {
        return;
    }
    const SInt32 droppedBefore = picturesDropped_;
    video_->Current()->isShown = true;
    PreparePictures(time);
    if (video_->Current()->isShown && video_->Next() != nullptr) {
        TakeNextPicture(); // the first there is lies behind the time sought
    }
    picturesDropped_ = droppedBefore;
    DrawIfNew();
}

void MovieRecord::SkipSoundUpTo(Nanoseconds time)
{
    if (audio_ && PrepareSound(time) >= time) {
        audio_->TakeUpTo(time, volume_);
    }
}

// False if there is none (yet).
bool MovieRecord::PrepareNextPicture()
{
    while (video_->Next() == nullptr) {
        const VideoTrack::Step step = video_->DecodeNext();
        if (step == VideoTrack::Step::kEnded ||
            (step == VideoTrack::Step::kNeedsPacket && PullPacket() == Step::kWaiting)) {
            return false;
        }
    }
    return true;
}

void MovieRecord::StepForward()
{
    Pause();
    if (!isPlayable_ || !video_ || isStopped_) {
        return;
    }
    const bool isSameNext = video_->IsFirstOnTheSide();
    if (!PrepareNextPicture()) {
        return;
    }
    TakeNextPicture();
    if (isSameNext && PrepareNextPicture()) {
        TakeNextPicture();
    }
    SkipSoundUpTo(video_->Current()->start);
    Anchor(video_->Current()->start);
    DrawIfNew();
}

void MovieRecord::StepBack()
{
    Pause();
    const Picture* const current = video_ ? video_->Current() : nullptr;
    if (current != nullptr) {
        const Nanoseconds before = current->start - 1;
        GoTo(before - beginning_);
        if (video_->Current() != nullptr) {
            const Nanoseconds start = std::max(beginning_, video_->Current()->start);
            if (audio_) {
                audio_->BeginAt(start);
            }
            Anchor(start);
        }
    }
}

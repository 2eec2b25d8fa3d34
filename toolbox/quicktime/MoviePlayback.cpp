// SPDX-License-Identifier: MIT
//
// The part of a movie that moves: its clock and what is due by it.
#include "toolbox/quicktime/Movie.h"

#include <algorithm>

using namespace toolbox;

namespace
{

constexpr Nanoseconds kPerMicrosecond = 1000;
// Sound is given out in pieces no longer than this.
constexpr SInt64 kSoundPieceMicroseconds = 100'000;
// A track this far behind the other has ended early: the other does not wait for it.
constexpr Nanoseconds kLostTrack = 3 * kSecond;

bool HasFallenBehind(Nanoseconds end, Nanoseconds endOfOther)
{
    return endOfOther != kNoTime && end != kNoTime && endOfOther > end + kLostTrack;
}

SInt64 RoundUpToMicroseconds(Nanoseconds time)
{
    return (time + kPerMicrosecond - 1) / kPerMicrosecond;
}

} // namespace

void MovieRecord::Play()
{
    if (!isPlayable_ || isPlaying_ || isStopped_) {
        return;
    }
    if (isAtEnd_) {
        GoTo(0);
    }
    isPlaying_ = true;
    isSinkPrepared_ = false;
    Anchor(time_);
}

void MovieRecord::Pause()
{
    RecallSound();
    isPlaying_ = false;
    isHeldUp_ = false;
}

void MovieRecord::Anchor(Nanoseconds time)
{
    time_ = anchorTime_ = time;
    anchorClock_ = ToolboxMicroseconds();
}

// Time goes on only as far as pictures and sound can be decoded for it, so that nothing is lost
// when bytes are late: it stands still and goes on from there.
void MovieRecord::PlayDue()
{
    if (isHeldUp_ && soundLead_ > 0) {
        if (!IsRefilled()) {
            return;
        }
        Anchor(time_);
    }
    const Nanoseconds elapsed = (ToolboxMicroseconds() - anchorClock_) * kPerMicrosecond;
    const Nanoseconds target = anchorTime_ + std::max<Nanoseconds>(0, elapsed);
    // Held up, it stands at the end of what is there: only a look behind that tells whether more
    // has come, also when the clock has not moved since.
    const Nanoseconds looked = target + (isHeldUp_ ? 1 : 0);
    const Nanoseconds reached = PreparePictures(PrepareSound(looked));
    isHeldUp_ = reached < looked;
    if (!isHeldUp_ && MustPrepareSink()) {
        BeginSound();
    } else {
        PlaySoundUpTo(std::min(reached, target));
        time_ = std::max(time_, std::min(reached, target));
    }
    if (isHeldUp_) {
        RecallSound();
        Anchor(time_);
    } else {
        PlaySoundAhead();
        DecodeAhead();
    }
    const bool picturesAreOver = !video_ || (video_->IsEnded() && video_->Next() == nullptr);
    const bool soundIsOver = !audio_ || audio_->DecodeUpTo(time_ + 1) == AudioTrack::Step::kEnded;
    if (dataEnded_ && picturesAreOver && soundIsOver) {
        EndPlaying();
    }
}

// How far the sound lets time go.
Nanoseconds MovieRecord::PrepareSound(Nanoseconds target)
{
    while (audio_ && audio_->DecodeUpTo(target) == AudioTrack::Step::kNeedsPacket) {
        if (PullPacket() != Step::kWaiting) {
            continue;
        }
        const Nanoseconds end =
            audio_->Start() == kNoTime ? audio_->EndOfPackets() : audio_->EndOfDecoded();
        const bool isLost = video_ && HasFallenBehind(end, video_->EndOfPackets());
        return isLost ? target : std::min(target, std::max(end, time_));
    }
    return target;
}

// How far the pictures let time go; the one that is due then is current.
Nanoseconds MovieRecord::PreparePictures(Nanoseconds target)
{
    while (video_) {
        if (const Picture* next = video_->Next()) {
            if (next->start > target) {
                return target;
            }
            TakeNextPicture();
            continue;
        }
        const VideoTrack::Step step = video_->DecodeNext();
        if (step == VideoTrack::Step::kEnded) {
            return target;
        }
        if (step == VideoTrack::Step::kNeedsPacket && PullPacket() == Step::kWaiting) {
            const Picture* const current = video_->Current();
            const Nanoseconds end = current != nullptr ? current->end : time_;
            const bool isLost = audio_ && HasFallenBehind(end, audio_->EndOfPackets());
            return isLost ? target : std::min(target, std::max(end, time_));
        }
    }
    return target;
}

void MovieRecord::TakeNextPicture()
{
    if (!video_->TakeNext()) {
        ++picturesDropped_;
    }
}

// Between two pictures the processor turns to other things, and a decoder that comes back finds
// little of its own in the caches: several pictures one after the other cost far less than one at
// a time.
void MovieRecord::DecodeAhead()
{
    if (!video_ || video_->HasAhead()) {
        return;
    }
    while (video_->HasRoomAhead()) {
        const VideoTrack::Step step = video_->DecodeAhead();
        const bool isPulled =
            step == VideoTrack::Step::kNeedsPacket && PullPacket() != Step::kWaiting;
        if (step != VideoTrack::Step::kFrame && !isPulled) {
            return;
        }
    }
}

MovieRecord::Nanoseconds MovieRecord::EndOfPictures() const
{
    const Picture* const current = video_ ? video_->Current() : nullptr;
    return current != nullptr ? current->end : kNoTime;
}

MovieRecord::Nanoseconds MovieRecord::EndOfSound() const
{
    // A decoder that did not see the beginning does not leave out the padding.
    return audio_ && audio_->Start() != kNoTime
               ? std::min(audio_->EndOfDecoded(), index_->StartOfPadding())
               : kNoTime;
}

// Everything is decoded; the movie is over when the last picture and the last sound are, at once if
// there was nothing to decode from where it was sent.
void MovieRecord::EndPlaying()
{
    const Nanoseconds decoded = std::max(EndOfPictures(), EndOfSound());
    const Nanoseconds end = decoded != kNoTime ? decoded : time_;
    if (time_ >= end) {
        PlaySoundUpTo(end);
        playedEnd_ = decoded;
        time_ = end;
        isAtEnd_ = true;
        isPlaying_ = isHeldUp_ = false; // the sink has all its sound, and it is due
    }
}

Nanoseconds MovieRecord::Time() const
{
    return time_ - beginning_;
}

SInt64 MovieRecord::NextDeadline() const
{
    if (isStopped_ || status_ != 0) {
        return -1;
    }
    const SInt64 now = ToolboxMicroseconds();
    const bool canRead = !dataEnded_ && (!outOfBytes_ || play_->Bytes().HasArrived());
    if (canRead && (!isPlayable_ || isHeldUp_)) {
        return now;
    }
    const SInt64 playing = isPlaying_ && !isHeldUp_ ? NextTimeOfPlaying(now) : -1;
    const SInt64 index = index_->HasWork() ? NextTimeOfIndex(now) : -1;
    return playing < 0 || index < 0 ? std::max(playing, index) : std::min(playing, index);
}

SInt64 MovieRecord::NextTimeOfIndex(SInt64 now) const
{
    return IsEverythingThere() ? now : std::max(now, indexBudget_.NextTime());
}

// The next picture, the next piece of sound, or the end.
SInt64 MovieRecord::NextTimeOfPlaying(SInt64 now) const
{
    const auto clockAt = [this](Nanoseconds time) {
        return anchorClock_ + RoundUpToMicroseconds(time - anchorTime_);
    };
    SInt64 deadline = now + kSoundPieceMicroseconds;
    if (video_ && video_->Next() != nullptr) {
        deadline = std::min(deadline, clockAt(video_->Next()->start));
    } else if (dataEnded_) {
        for (const Nanoseconds end : {EndOfPictures(), EndOfSound()}) {
            const SInt64 due = end == kNoTime ? now : clockAt(end);
            deadline = due > now ? std::min(deadline, due) : deadline;
        }
    }
    return std::max(deadline, now);
}

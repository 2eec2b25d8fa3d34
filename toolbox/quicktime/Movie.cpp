// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/Movie.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/Drawing.h"

#include <algorithm>

using namespace toolbox;

namespace
{

// How much one slice takes in: enough to keep up with any arrival, little enough to be over soon.
constexpr SInt64 kBytesPerSlice = SInt64{256} * 1024;
constexpr SInt64 kBytesPerSmallSlice = SInt64{16} * 1024;
constexpr int kMostSmallSlices = 4; // where nobody draws it
constexpr int kPacketsPerSlice = 256;
// A systems stream that has shown no picture after this much has only sound.
constexpr SInt64 kSoundAloneAfter = SInt64{256} * 1024;
constexpr SInt64 kUnplacedAfter = SInt64{256} * 1024;
constexpr SInt64 kMostAtOnce = SInt64{4} * 1024 * 1024;

class BusyMark
{
public:
    explicit BusyMark(bool& flag) : flag_(flag) { flag_ = true; }
    ~BusyMark() { flag_ = false; }
    BusyMark(const BusyMark&) = delete;
    BusyMark& operator=(const BusyMark&) = delete;

private:
    bool& flag_;
};

} // namespace

MovieRecord::MovieRecord(std::unique_ptr<DataHandlerClient> handler, void* owner)
    : handler_(std::move(handler)), index_(std::make_unique<MovieIndex>(*handler_)),
      play_(std::make_unique<MovieStream>(*handler_)), owner_(owner)
{
    CountInLedger(kLiveMovies, 1);
}

// The data handler may still hold requests for the streams' blocks: the fibers end first, then
// the data handler goes with its requests, then the blocks.
MovieRecord::~MovieRecord()
{
    Stop();
    CloseSound();
    DisposeRgn(clip_);
    handler_.reset();
    CountInLedger(kLiveMovies, -1);
}

void MovieRecord::Stop()
{
    isStopped_ = true;
    Pause();
    index_->Stream().Stop();
    play_->Stop();
}

void MovieRecord::Slice()
{
    if (isBusy_ || isStopped_) {
        return;
    }
    const BusyMark mark(isBusy_);
    OpenSome(kPacketsPerSlice);
    TakeInSome();
    if (isPlaying_) {
        PlayDue();
    }
    DrawIfNew();
}

// Once everything is there, whatever is left is taken in slice by slice: in small ones while
// somebody waits for the first picture.
void MovieRecord::TakeInSome()
{
    const SInt64 budget =
        IsEverythingThere() ? kBytesPerSlice : indexBudget_.At(ToolboxMicroseconds());
    if (budget < IndexBudget::kWorthwhile) {
        return;
    }
    const SInt64 before = index_->BytesTaken();
    const bool isPictureAwaited = video_ && !isDrawn_ && smallSlices_++ < kMostSmallSlices;
    index_->TakeIn(std::min(budget, isPictureAwaited ? kBytesPerSmallSlice : kBytesPerSlice));
    indexBudget_.Spend(index_->BytesTaken() - before);
}

// What is available is an estimate, unknown or not, once everything is.
bool MovieRecord::IsEverythingThere() const
{
    const SInt32 available = handler_->AvailableSize();
    return available < 0 || available == handler_->FileSize();
}

void MovieRecord::OpenCompletely()
{
    const BusyMark mark(isBusy_);
    OpenSome(INT32_MAX);
}

void MovieRecord::TakeInWhatIsThere()
{
    if (!isBusy_ && !isStopped_) {
        const BusyMark mark(isBusy_);
        index_->TakeIn(kMostAtOnce);
    }
}

void MovieRecord::OpenSome(int mostPackets)
{
    for (int i = 0; i < mostPackets && !isPlayable_ && status_ == noErr; ++i) {
        const Step step = PullPacket();
        if (CanShowOrPlay(step)) {
            BecomePlayable();
        } else if (step == Step::kWaiting) {
            return;
        } else if (step != Step::kPacket) {
            Fail(noMovieFound);
        }
    }
}

MovieRecord::Step MovieRecord::PullPacket()
{
    if (dataEnded_) {
        return Step::kEnded;
    }
    const Step step = play_->Advance();
    outOfBytes_ = step == Step::kWaiting;
    if (step == Step::kPacket) {
        Dispatch(play_->Packet(), play_->StreamOfPacket());
    } else if (step != Step::kWaiting) {
        EndTracks();
    }
    return step;
}

// The first stream of pictures and the first of sound make the movie.
void MovieRecord::Dispatch(AVPacket& packet, const AVStream& stream)
{
    const AVMediaType type = stream.codecpar->codec_type;
    const StreamKind kind = play_->Start().kind;
    if ((stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0 ||
        (type != AVMEDIA_TYPE_VIDEO && type != AVMEDIA_TYPE_AUDIO)) {
        return;
    }
    if (!hasTimeline_) {
        timeline_ = TimelineFor(kind, begin_);
        hasTimeline_ = true;
    }
    const int id = stream.id;
    timeline_.Place(packet, stream);
    if (type == AVMEDIA_TYPE_VIDEO && !videoId_) {
        video_ = VideoTrack::Create(stream, packet, kind != StreamKind::kVideo, begin_.time);
        videoId_ = video_ ? std::optional(id) : std::nullopt;
    } else if (type == AVMEDIA_TYPE_AUDIO && !audioId_) {
        audio_ = AudioTrack::Create(stream, packet);
        audioId_ = audio_ ? std::optional(id) : std::nullopt;
    }
    if (video_ && type == AVMEDIA_TYPE_VIDEO && id == videoId_) {
        video_->Add(packet);
    } else if (audio_ && type == AVMEDIA_TYPE_AUDIO && id == audioId_) {
        audio_->Add(packet);
    }
}

void MovieRecord::EndTracks()
{
    dataEnded_ = true;
    if (video_) {
        video_->EndData();
    }
    if (audio_) {
        audio_->EndData();
    }
}

// Whether a picture, or sound if there are no pictures, can be had from the packets so far.
bool MovieRecord::CanShowOrPlay(Step step)
{
    const bool isLast = step != Step::kPacket && step != Step::kWaiting;
    if (video_) {
        if ((isLast || IsPlaced()) && video_->ShowFirst()) {
            return true;
        }
        if (isLast && video_->DecodeNext() == VideoTrack::Step::kFrame) {
            video_->TakeNext();
            return true;
        }
    }
    const bool soundIsAll = isLast || (!video_ && (play_->Start().kind == StreamKind::kAudio ||
                                                   play_->BytesTaken() > kSoundAloneAfter));
    return audio_ && soundIsAll && audio_->DecodeSome() == AudioTrack::Step::kFrame &&
           audio_->Start() != kNoTime;
}

// Whether the pictures have a place in time. Those at the start may have no stamps: they go with
// the first stamp behind them, unless there is none for long.
bool MovieRecord::IsPlaced() const
{
    return timeline_.First() != kNoTime || play_->BytesTaken() > kUnplacedAfter;
}

void MovieRecord::BecomePlayable()
{
    isPlayable_ = true;
    const bool isSoundAlone = !video_ || video_->Current() == nullptr;
    if (isSoundAlone) {
        video_.reset();
        beginning_ = audio_->Start();
    } else if (timeline_.First() != kNoTime) {
        beginning_ = timeline_.First();
    } else {
        beginning_ = video_->Current()->start;
    }
    time_ = beginning_;
    opened_ = play_->Start().start;
}

void MovieRecord::Fail(OSErr status)
{
    if (!isStopped_) {
        status_ = status;
    }
}

SInt32 MovieRecord::LoadState() const
{
    if (status_ != noErr) {
        return kMovieLoadStateError;
    }
    if (!isPlayable_) {
        return video_ || audio_ ? kMovieLoadStateLoaded : kMovieLoadStateLoading;
    }
    if (index_->IsComplete()) {
        return kMovieLoadStateComplete;
    }
    const bool isAllThere = index_->Stream().Bytes().FinalSize() >= 0;
    return isAllThere ? kMovieLoadStatePlaythroughOK : kMovieLoadStatePlayable;
}

MovieRecord::Nanoseconds MovieRecord::LoadedDuration() const
{
    if (index_->IsComplete() && playedEnd_ != kNoTime) {
        return playedEnd_ - beginning_;
    }
    const Nanoseconds end = index_->End();
    return end == kNoTime ? 0 : end - index_->Start();
}

MovieRecord::Nanoseconds MovieRecord::Duration() const
{
    const Nanoseconds loaded = LoadedDuration();
    const bool isAllTakenIn = index_->IsComplete() || (isAnnouncedForgotten_ && !index_->HasWork());
    if (isAllTakenIn) {
        return loaded;
    }
    return std::max(loaded, index_->AnnouncedLength(handler_ ? handler_->FileSize() : -1));
}

Rect MovieRecord::NaturalBox() const
{
    const Picture* const picture = video_ ? video_->Current() : nullptr;
    if (picture == nullptr) {
        return Rect{};
    }
    return Rect{0, 0, static_cast<SInt16>(std::min(picture->frame->height, 16383)),
                static_cast<SInt16>(std::min(picture->frame->width, 16383))};
}

void MovieRecord::SetBox(const Rect& box)
{
    box_ = box;
    hasBox_ = true;
}

void MovieRecord::SetClip(RgnHandle clip)
{
    DisposeRgn(clip_);
    clip_ = CopyRegion(clip);
}

void MovieRecord::Draw()
{
    isDrawn_ = true;
    Picture* const picture = video_ ? video_->Current() : nullptr;
    if (!isActive_ || port_ == nullptr || picture == nullptr) {
        return;
    }
    converter_.Draw(*picture->frame, *port_, hasBox_ ? box_ : NaturalBox(), clip_);
    if (!picture->isShown) {
        picture->isShown = true;
        ++picturesShown_;
    }
}

void MovieRecord::DrawIfNew()
{
    const Picture* const picture = video_ ? video_->Current() : nullptr;
    if (isDrawn_ && picture != nullptr && !picture->isShown) {
        Draw();
    }
}

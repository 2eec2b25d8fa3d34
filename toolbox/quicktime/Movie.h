// SPDX-License-Identifier: MIT
//
// One movie: what it is made of, how far it has come, where it plays and what it shows.
#pragma once

#include "toolbox/quicktime/AudioTrack.h"
#include "toolbox/quicktime/IndexBudget.h"
#include "toolbox/quicktime/MovieIndex.h"
#include "toolbox/quicktime/Movies.h"
#include "toolbox/quicktime/PictureConverter.h"
#include "toolbox/quicktime/VideoTrack.h"

#include <memory>
#include <optional>
#include <vector>

// Times inside are those of the time line (toolbox/quicktime/Timeline.h); the movie's own time
// zero is Beginning() on it.
struct MovieRecord {
public:
    using Nanoseconds = toolbox::Nanoseconds;

    MovieRecord(std::unique_ptr<toolbox::DataHandlerClient> handler, void* owner);
    ~MovieRecord();
    MovieRecord(const MovieRecord&) = delete;
    MovieRecord& operator=(const MovieRecord&) = delete;

    // A bounded amount of work: takes in what has arrived, plays and draws what is due.
    void Slice();
    // Reads on until the movie is playable, over, in error or out of bytes.
    void OpenCompletely();
    // Lets the data handler work; may yield.
    void TaskDataHandler() { handler_->Task(); }
    // From now on nothing is read.
    void Stop();

    SInt32 LoadState() const;
    OSErr Status() const { return status_; }
    bool IsPlayable() const { return isPlayable_; }
    // Length known or announced, and end of what has arrived, both counted from Beginning().
    Nanoseconds Duration() const;
    Nanoseconds LoadedDuration() const;
    // Takes in what is there, as far as that is quickly done; slices take in the rest.
    void TakeInWhatIsThere();
    // Forgets what was announced but has not arrived.
    void ForgetAnnounced() { isAnnouncedForgotten_ = true; }

    // The picture's own size; empty for sound alone and while it is unknown.
    Rect NaturalBox() const;
    const Rect& Box() const { return box_; }
    void SetBox(const Rect& box);
    void SetPort(CGrafPtr port) { port_ = port; }
    CGrafPtr Port() const { return port_; }
    void SetActive(bool active) { isActive_ = active; }
    // The clip is copied; null: none.
    void SetClip(RgnHandle clip);
    RgnHandle Clip() const { return clip_; }
    // Draws the current picture. From the first call on new pictures are drawn as they fall due.
    void Draw();

    bool IsPlaying() const { return isPlaying_; }
    // Playing, but held up for bytes.
    bool IsHeldUp() const { return isPlaying_ && isHeldUp_; }
    // Starts at the current time, from the beginning when it is the end.
    void Play();
    void Pause();
    // The time shown now, from Beginning().
    Nanoseconds Time() const;
    // All of it is there, and it has been played or been sent to its end.
    bool IsAtEnd() const { return isAtEnd_; }
    // Goes to a time; past what has arrived, to its end.
    void GoTo(Nanoseconds time);
    void StepForward();
    void StepBack();
    bool HasSound() const { return audio_ != nullptr; }
    int Volume() const { return volume_; }
    void SetVolume(int volume); // 0 to 256

    // When this movie next needs a slice: toolbox microseconds, -1 if not by itself.
    SInt64 NextDeadline() const;
    void* Owner() const { return owner_; }
    SInt32 PicturesShown() const { return picturesShown_; }
    SInt32 PicturesDropped() const { return picturesDropped_; }
    SInt64 SoundFrames() const { return soundFrames_; }

private:
    using Step = toolbox::MovieStream::Step;
    static constexpr Nanoseconds kNoTime = toolbox::kNoTime;

    void TakeInSome();
    bool IsEverythingThere() const;
    void OpenSome(int mostPackets);
    Step PullPacket();
    void Dispatch(AVPacket& packet, const AVStream& stream);
    void EndTracks();
    bool CanShowOrPlay(Step step);
    bool IsPlaced() const;
    void BecomePlayable();
    void Fail(OSErr status);

    void PlayDue();
    Nanoseconds PrepareSound(Nanoseconds target);
    Nanoseconds PreparePictures(Nanoseconds target);
    void TakeNextPicture();
    void DecodeAhead();
    void PlaySoundUpTo(Nanoseconds time);
    void OpenSound();
    SInt64 ClockAt(Nanoseconds time) const;
    bool MustPrepareSink() const;
    void BeginSound();
    bool IsRefilled();
    void PlaySoundAhead();
    void RecallSound();
    Nanoseconds EndOfPictures() const;
    Nanoseconds EndOfSound() const;
    void EndPlaying();
    SInt64 NextTimeOfIndex(SInt64 now) const;
    SInt64 NextTimeOfPlaying(SInt64 now) const;
    void Anchor(Nanoseconds time);
    void CloseSound();
    std::vector<UInt8> PrologueFor(const toolbox::Sniffed& start) const;
    void Restart(const toolbox::KeySample& key);
    bool PrepareNextPicture();
    void ShowPictureAt(Nanoseconds time);
    void SkipSoundUpTo(Nanoseconds time);
    void DrawIfNew();

    std::unique_ptr<toolbox::DataHandlerClient> handler_; // goes after the streams stopped …
    std::unique_ptr<toolbox::MovieIndex> index_;
    toolbox::IndexBudget indexBudget_;
    std::unique_ptr<toolbox::MovieStream> play_;
    toolbox::Timeline timeline_;
    bool hasTimeline_ = false;
    toolbox::ReadPlace begin_; // where play_ began
    SInt64 opened_ = 0;        // where the movie's data begins
    std::unique_ptr<toolbox::VideoTrack> video_;
    std::unique_ptr<toolbox::AudioTrack> audio_;
    // Their streams' numbers in the data; places in libavformat's list differ from reading to
    // reading.
    std::optional<int> videoId_;
    std::optional<int> audioId_;
    bool dataEnded_ = false;  // play_ has no more packets
    bool outOfBytes_ = false; // play_ waits

    void* owner_;
    OSErr status_ = 0;
    bool isPlayable_ = false;
    bool isStopped_ = false;
    bool isBusy_ = false;
    int smallSlices_ = 0;
    bool isActive_ = false;
    bool isAnnouncedForgotten_ = false;

    Nanoseconds beginning_ = 0;
    Nanoseconds time_ = 0;       // on the time line
    Nanoseconds anchorTime_ = 0; // time_ …
    SInt64 anchorClock_ = 0;     // … at this toolbox time
    bool isPlaying_ = false;
    bool isHeldUp_ = false;
    bool isAtEnd_ = false;
    Nanoseconds playedEnd_ = kNoTime; // where playing ended, nothing being left
    void* sound_ = nullptr;           // the sink's stream
    bool isSoundOpen_ = false;
    bool isSinkPrepared_ = false; // since time last began to run
    Nanoseconds soundLead_ = 0;   // how long before it is due sound is given; 0: when it is due
    int volume_ = 256;

    Rect box_{};
    bool hasBox_ = false;
    CGrafPtr port_ = nullptr;
    RgnHandle clip_ = nullptr;
    bool isDrawn_ = false;
    toolbox::PictureConverter converter_;
    SInt32 picturesShown_ = 0;
    SInt32 picturesDropped_ = 0;
    SInt64 soundFrames_ = 0;
};

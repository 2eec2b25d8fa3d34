// SPDX-License-Identifier: MIT
//
// Movie bytes: opened while they arrive, played, clicked at and closed at any moment.
#include "tests/fuzz/Decisions.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/LiveObjects.h"
#include "tests/fuzz/Require.h"
#include "tests/support/ArrivingData.h"
#include "tests/support/ManualClock.h"
#include "toolbox/Errors.h"
#include "toolbox/quicktime/Movies.h"

#include <algorithm>

namespace
{

constexpr size_t kPlanBytes = 24; // decisions in front of the movie's bytes
constexpr int kSteps = 24;

// A window's port as long as the process.
CGrafPtr Port()
{
    static const CGrafPtr port = [] {
        const Rect bounds = {0, 0, 300, 400};
        CGrafPtr made = nullptr;
        Require(CreateWindowPort(&bounds, &made) == noErr, "there is a port");
        return made;
    }();
    return port;
}

// What is said of a movie is possible, and its load state never goes back.
class Progress
{
public:
    void Look(Movie movie)
    {
        const SInt32 state = GetMovieLoadState(movie);
        constexpr SInt32 kStates[] = {kMovieLoadStateError,         kMovieLoadStateLoading,
                                      kMovieLoadStateLoaded,        kMovieLoadStatePlayable,
                                      kMovieLoadStatePlaythroughOK, kMovieLoadStateComplete};
        Require(std::ranges::count(kStates, state) == 1, "the load state is a documented one");
        Require(state == kMovieLoadStateError || state >= state_, "it only grows");
        Require(state_ != kMovieLoadStateError || state == state_, "a failure stays");
        state_ = state;
        TimeValue loaded = 0;
        Require(GetMaxLoadedTimeInMovie(movie, &loaded) == noErr, "a loaded time is known");
        Require(loaded >= 0, "it is not negative");
        Require(GetMovieDuration(movie) >= 0, "nor is the duration");
    }
    bool IsPlayable() const { return state_ >= kMovieLoadStatePlayable; }

private:
    SInt32 state_ = kMovieLoadStateLoading;
};

class Page
{
public:
    Page(std::string bytes, std::span<const UInt8> plan) : plan_(plan), data_(std::move(bytes))
    {
        SetPort(Port());
        const bool isAtOnce = plan_.Below(4) == 0;
        if (isAtOnce)
            data_.ArriveCompletely();
        const SInt16 flags = isAtOnce ? 0 : newMovieAsyncOK | newMovieIdleImportOK;
        const OSErr opened =
            NewMovieFromDataRef(&movie_, flags, nullptr, data_.DataRef(), ArrivingData::kSubType);
        Require(opened <= 0, "opening gives a code of the platform");
        Require((opened == noErr) == (movie_ != nullptr), "there is a movie or an error");
    }
    ~Page()
    {
        if (controller_ != nullptr)
            DisposeMovieController(controller_);
        if (movie_ != nullptr)
            DisposeMovie(movie_);
        SetPort(nullptr);
    }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    void Play()
    {
        for (int step = 0; step < kSteps && movie_ != nullptr && !isTrimmed_; ++step) {
            Arrive();
            progress_.Look(movie_);
            ShowIfPlayable();
            if (controller_ != nullptr)
                UseController();
            else
                MoviesTask(movie_, 0);
            clock_.GoToTick(ticks_ += plan_.Below(20));
        }
    }

private:
    void Arrive()
    {
        const size_t some = size_t{1} << plan_.Below(13);
        if (data_.Arrived() < data_.Size())
            data_.ArriveUpTo(data_.Arrived() + some);
        else
            data_.ArriveCompletely();
    }
    void ShowIfPlayable()
    {
        if (controller_ != nullptr || !progress_.IsPlayable())
            return;
        SetMovieGWorld(movie_, Port(), nullptr);
        Rect box{};
        GetMovieBox(movie_, &box);
        Require(box.top <= box.bottom && box.left <= box.right, "a picture has a size");
        box.bottom = std::min<SInt16>(box.bottom, 200);
        box.right = std::min<SInt16>(box.right, 300);
        controller_ = NewMovieController(movie_, &box, mcTopLeftMovie | mcScaleMovieToFit);
        Require(controller_ != nullptr, "a playable movie has a controller");
        SetMovieActive(movie_, 1);
        MCDoAction(controller_, mcActionDraw, Port());
    }
    void UseController()
    {
        EventRecord event{};
        event.what = static_cast<UInt16>(plan_.Below(16));
        event.message = plan_.Byte();
        event.where = Point{static_cast<SInt16>(plan_.Byte()), static_cast<SInt16>(plan_.Byte())};
        switch (plan_.Below(8)) {
        case 0:
            MCIsPlayerEvent(controller_, &event);
            break;
        case 1:
            event.what = keyDown;
            event.message = ' ';
            MCIsPlayerEvent(controller_, &event);
            break;
        case 2:
            MCMovieChanged(controller_, movie_);
            break;
        case 3:
            DeleteMovieSegment(movie_, GetMovieDuration(movie_) / 2, plan_.AnyLong());
            isTrimmed_ = true; // what is loaded may be less now
            break;
        default:
            break;
        }
        MCDoAction(controller_, mcActionIdle, nullptr);
        GetMoviesError();
    }

    Decisions plan_;
    test::ManualClock clock_;
    ArrivingData data_;
    Progress progress_;
    UInt32 ticks_ = 1;
    Movie movie_ = nullptr;
    MovieController controller_ = nullptr;
    bool isTrimmed_ = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    if (size < kPlanBytes)
        return 0;
    static const OSErr entered = EnterMovies();
    Require(entered == noErr, "there are movies");
    Port();
    const LiveObjects before;
    Page(std::string(bytes + kPlanBytes, bytes + size), {bytes, kPlanBytes}).Play();
    Require(LiveObjects() == before, "nothing is left behind");
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    std::vector<FuzzInput> seeds;
    for (const char* const name :
         {"tiny.mpg", "sound.mp3", "sound.mp2", "video.m1v", "video.m2v", "mpeg2.mpg"}) {
        constexpr size_t kMost = 6000;
        const std::string clip = ReadWholeFile(std::string(VORN_CLIPS "/") + name).substr(0, kMost);
        FuzzInput seed(kPlanBytes);
        for (size_t i = 0; i < kPlanBytes; ++i)
            seed[i] = static_cast<UInt8>(10 + i);
        seed.insert(seed.end(), clip.begin(), clip.end());
        seeds.push_back(seed);
    }
    return seeds;
}

// SPDX-License-Identifier: MIT
//
// Movies over bytes that arrive as the test says, on a clock that the test moves.
#include "toolbox/quicktime/Movies.h"
#include "tests/support/ArrivingData.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

namespace
{

constexpr SInt64 kTick = 1'000'000 / 60;

std::string Clip(const std::string& name)
{
    return ReadWholeFile(VORN_CLIPS "/" + name);
}

int ExpectedPictures(const std::string& clip)
{
    return std::stoi(Clip(clip + ".pictures"));
}

// A page with one movie on it: port, clock and sound.
class OpenedMovie
{
public:
    explicit OpenedMovie(std::string bytes, const std::string& name = "clip.mpg")
        : data(std::move(bytes), name)
    {
        EnterMovies();
        SetToolboxClock([](void* self) { return static_cast<OpenedMovie*>(self)->now; }, this);
        const ToolboxSoundSink sink = {
            [](void* self, SInt32 rate, SInt32 channels) -> void* {
                static_cast<OpenedMovie*>(self)->soundRate = rate;
                static_cast<OpenedMovie*>(self)->soundChannels = channels;
                return self;
            },
            [](void* self, void*, const SInt16* frames, SInt32 count, SInt64) {
                auto* const page = static_cast<OpenedMovie*>(self);
                page->sound.insert(page->sound.end(), frames, frames + count * page->soundChannels);
            },
            [](void*, void*) {}, this};
        SetSoundSink(&sink);
        const Rect bounds = {0, 0, 400, 500};
        EXPECT_EQ(CreateWindowPort(&bounds, &port), noErr);
        SetPort(port);
    }

    ~OpenedMovie()
    {
        Close();
        DisposeWindowPort(port);
        SetPort(nullptr);
        SetSoundSink(nullptr);
        SetToolboxClock(nullptr, nullptr);
    }
    OpenedMovie(const OpenedMovie&) = delete;
    OpenedMovie& operator=(const OpenedMovie&) = delete;

    void Close()
    {
        if (controller != nullptr) {
            DisposeMovieController(controller);
            controller = nullptr;
        }
        if (movie != nullptr) {
            StopMovie(movie);
            DisposeMovie(movie);
            movie = nullptr;
        }
    }

    OSErr Open(SInt16 flags = newMovieAsyncOK | newMovieIdleImportOK)
    {
        return NewMovieFromDataRef(&movie, flags, nullptr, data.DataRef(), ArrivingData::kSubType);
    }

    // Makes and draws the controller once the movie is playable.
    bool ShowIfPlayable()
    {
        if (controller == nullptr && GetMovieLoadState(movie) >= kMovieLoadStatePlayable) {
            SetMovieGWorld(movie, port, nullptr);
            Rect box;
            GetMovieBox(movie, &box);
            controller = NewMovieController(movie, &box, mcTopLeftMovie | mcScaleMovieToFit);
            SetMovieActive(movie, 1);
            MCDoAction(controller, mcActionDraw, port);
        }
        return controller != nullptr;
    }

    void OpenAll()
    {
        data.ArriveCompletely();
        ASSERT_EQ(Open(0), noErr);
        ASSERT_TRUE(ShowIfPlayable());
    }

    Rect Bar() const
    {
        Rect bounds;
        MCGetControllerBoundsRect(controller, &bounds);
        bounds.top = static_cast<SInt16>(bounds.bottom - 16);
        return bounds;
    }

    bool Mouse(UInt16 what, int h, int v)
    {
        EventRecord event{};
        event.what = what;
        event.where = Point{static_cast<SInt16>(v), static_cast<SInt16>(h)};
        return MCIsPlayerEvent(controller, &event) == 1;
    }
    void ClickPlay() { EXPECT_TRUE(Mouse(mouseDown, Bar().left + 24, Bar().top + 8)); }
    bool Key(char code)
    {
        EventRecord event{};
        event.what = keyDown;
        event.message = static_cast<UInt8>(code);
        return MCIsPlayerEvent(controller, &event) == 1;
    }

    MovieStatistics Statistics() const
    {
        MovieStatistics statistics;
        GetMovieStatistics(nullptr, &statistics);
        return statistics;
    }

    // Takes in all that has arrived.
    void IdleUntilNothingIsPending()
    {
        while (NextToolboxDeadline() >= 0) {
            Idle();
        }
    }

    void Idle() { MCDoAction(controller, mcActionIdle, nullptr); }

    // Moves the clock from deadline to deadline until nothing plays any more or `limit` seconds
    // have passed; `step` is called before each idle.
    template <class Step>
    void PlayToEnd(Step step, double limit = 60)
    {
        const SInt64 end = now + static_cast<SInt64>(limit * 1e6);
        do {
            step();
            Idle();
            const SInt64 deadline = NextToolboxDeadline();
            now =
                deadline > now ? std::min(deadline, now + kTick) : now + (deadline < 0 ? kTick : 0);
        } while (Statistics().playing && now < end);
    }
    void PlayToEnd()
    {
        PlayToEnd([] {});
    }

    // A digest of the picture's pixels in the port.
    size_t PictureDigest() const
    {
        SInt32 rowBytes = 0;
        const UInt8* const pixels = GetPortPixels(port, &rowBytes);
        const Rect bar = Bar();
        std::string seen;
        for (SInt16 v = 0; v < bar.top; ++v) {
            seen.append(reinterpret_cast<const char*>(pixels) + ptrdiff_t{v} * rowBytes,
                        static_cast<size_t>(bar.right) * 4);
        }
        return std::hash<std::string>{}(seen);
    }

    ArrivingData data;
    SInt64 now = 1'000'000;
    CGrafPtr port = nullptr;
    Movie movie = nullptr;
    MovieController controller = nullptr;
    std::vector<SInt16> sound;
    SInt32 soundRate = 0;
    SInt32 soundChannels = 0;
};

std::string AsBytes(const std::vector<SInt16>& samples)
{
    return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(SInt16)};
}

// How far two runs of samples differ at most; INT32_MAX if one is longer.
int LargestDifference(const std::string& a, const std::string& b)
{
    if (a.size() != b.size()) {
        return INT32_MAX;
    }
    int largest = 0;
    for (size_t i = 0; i + 1 < a.size(); i += 2) {
        SInt16 x = 0;
        SInt16 y = 0;
        memcpy(&x, a.data() + i, 2);
        memcpy(&y, b.data() + i, 2);
        largest = std::max(largest, std::abs(x - y));
    }
    return largest;
}

class WholeClip : public testing::TestWithParam<const char*>
{
};

TEST_P(WholeClip, ShowsEveryPictureOnce)
{
    OpenedMovie page(Clip(GetParam()));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures(GetParam()));
    EXPECT_EQ(page.Statistics().picturesDropped, 0);
    EXPECT_FALSE(page.Statistics().playing);
}

TEST_P(WholeClip, SoundsAsTheCodecAloneDoes)
{
    OpenedMovie page(Clip(GetParam()));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    const std::string reference = Clip(std::string(GetParam()) + ".pcm");
    EXPECT_EQ(AsBytes(page.sound).size(), reference.size());
    EXPECT_LE(LargestDifference(AsBytes(page.sound), reference), 1);
}

INSTANTIATE_TEST_SUITE_P(Movies, WholeClip,
                         testing::Values("mpeg1.mpg", "mpeg2.mpg", "silent.mpg", "tiny.mpg",
                                         "video.m1v", "video.m2v"));

class SoundClip : public testing::TestWithParam<const char*>
{
};

TEST_P(SoundClip, SoundsAsTheCodecAloneDoes)
{
    OpenedMovie page(Clip(GetParam()), GetParam());
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_LE(LargestDifference(AsBytes(page.sound), Clip(std::string(GetParam()) + ".pcm")), 1);
}

TEST_P(SoundClip, HasAControllerWithoutAPicture)
{
    OpenedMovie page(Clip(GetParam()), GetParam());
    page.OpenAll();
    Rect bounds;
    MCGetControllerBoundsRect(page.controller, &bounds);
    EXPECT_EQ(bounds.bottom - bounds.top, 16);
    EXPECT_GT(bounds.right, bounds.left);
}

INSTANTIATE_TEST_SUITE_P(Movies, SoundClip, testing::Values("sound.mp2", "sound.mp3"));

struct Played {
    std::vector<size_t> pictures;
    std::vector<SInt16> sound;
    double duration = 0;
    bool operator==(const Played&) const = default;
};

// Plays a clip whose bytes arrive in the pieces that `nextPiece` gives, one piece a tick.
template <class NextPiece>
Played PlayArriving(const char* clip, NextPiece nextPiece)
{
    OpenedMovie page(Clip(clip), clip);
    EXPECT_EQ(page.Open(), noErr);
    Played played;
    SInt32 shown = 0;
    bool isPlaying = false;
    for (int turn = 0; turn < 100000; ++turn) {
        if (page.data.Arrived() < page.data.Size()) {
            page.data.ArriveUpTo(page.data.Arrived() + nextPiece());
        } else {
            page.data.ArriveCompletely();
        }
        MoviesTask(page.movie, 0);
        if (page.ShowIfPlayable()) {
            if (!std::exchange(isPlaying, true)) {
                page.ClickPlay();
            }
            page.Idle();
            if (page.Statistics().picturesShown > shown) {
                shown = page.Statistics().picturesShown;
                played.pictures.push_back(page.PictureDigest());
            }
            if (!page.Statistics().playing) {
                break;
            }
        }
        page.now += kTick;
    }
    played.sound = page.sound;
    played.duration = page.Statistics().durationSeconds;
    EXPECT_EQ(page.Statistics().picturesDropped, 0);
    return played;
}

TEST(ArrivingMovie, IsTheSameMovieAtEveryRateAndInEveryChunking)
{
    for (const char* const clip : {"mpeg1.mpg", "mpeg2.mpg", "video.m1v", "sound.mp3"}) {
        SCOPED_TRACE(clip);
        const Played atOnce = PlayArriving(clip, [] { return size_t{1} << 30; });
        EXPECT_FALSE(atOnce.pictures.empty() && atOnce.sound.empty());
        EXPECT_EQ(PlayArriving(clip, [] { return size_t{1000}; }), atOnce);
        std::mt19937 random(1234);
        std::uniform_int_distribution<size_t> piece(0, 30000);
        EXPECT_EQ(PlayArriving(clip, [&] { return piece(random); }), atOnce);
    }
}

TEST(ArrivingMovie, ShowsItsFirstPictureBeforeTheNextReferencePictureIsThere)
{
    const std::string clip = Clip("mpeg1.mpg");
    OpenedMovie page(clip);
    ASSERT_EQ(page.Open(), noErr);
    size_t arrived = 0;
    while (!page.ShowIfPlayable() && arrived < clip.size()) {
        arrived += 512;
        page.data.ArriveUpTo(arrived);
    }
    EXPECT_EQ(page.Statistics().picturesShown, 1);
    // The first group of pictures is 15 pictures long; four packs hold its first one.
    EXPECT_LE(arrived, 40 * 1024U);
}

TEST(ArrivingMovie, IsLoadingUntilSomethingCanBeShown)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(100);
    EXPECT_EQ(GetMovieLoadState(page.movie), kMovieLoadStateLoading);
    EXPECT_EQ(GetMovieStatus(page.movie, nullptr), noErr);
}

TEST(ArrivingMovie, IsCompleteOnceAllOfItWasTakenIn)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(200000);
    for (int i = 0; i < 10; ++i) {
        EXPECT_LT(GetMovieLoadState(page.movie), kMovieLoadStateComplete);
    }
    page.data.ArriveCompletely();
    for (int i = 0; i < 10; ++i) {
        GetMovieLoadState(page.movie);
    }
    EXPECT_EQ(GetMovieLoadState(page.movie), kMovieLoadStateComplete);
    EXPECT_NEAR(GetMovieDuration(page.movie) / 90000.0, 4.0, 0.1);
}

TEST(ArrivingMovie, StandsStillWhereBytesAreMissingAndGoesOnFromThere)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(page.data.Size() / 2);
    ASSERT_TRUE(page.ShowIfPlayable());
    page.ClickPlay();
    for (int tick = 0; tick < 60 * 10; ++tick) {
        page.now += kTick;
        page.Idle();
    }
    EXPECT_TRUE(page.Statistics().waiting);
    EXPECT_EQ(NextToolboxDeadline(), -1) << "nothing to do before bytes come";
    const SInt32 before = page.Statistics().picturesShown;
    page.data.ArriveCompletely();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg"));
    EXPECT_LT(before, ExpectedPictures("mpeg1.mpg"));
    EXPECT_EQ(page.Statistics().picturesDropped, 0);
}

TEST(ArrivingMovie, DoesNotAskAgainWhileNothingComes)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(page.data.Size() / 2);
    ASSERT_TRUE(page.ShowIfPlayable());
    page.ClickPlay();
    for (int tick = 0; tick < 60 * 5; ++tick) {
        page.now += kTick;
        page.Idle();
    }
    ASSERT_TRUE(page.Statistics().waiting);
    const int asked = page.data.Asked();
    for (int tick = 0; tick < 60; ++tick) {
        page.now += kTick;
        page.Idle();
        MoviesTask(page.movie, 0);
    }
    EXPECT_EQ(page.data.Asked(), asked);
}

TEST(ArrivingMovie, DoesNotWaitForEverForASecondTrackThatEndsEarly)
{
    // Sound that covers only the first second of four, in a stream that stays open.
    OpenedMovie page(Clip("early.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(page.data.Size());
    ASSERT_TRUE(page.ShowIfPlayable());
    page.ClickPlay();
    for (int tick = 0; tick < 60 * 10; ++tick) {
        page.now += kTick;
        page.Idle();
    }
    EXPECT_GT(page.Statistics().picturesShown, ExpectedPictures("early.mpg") * 3 / 4);
}

TEST(ArrivingMovie, IsOpenedFromAnEstimateThatIsWrong)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.data.ArriveCompletely();
    ASSERT_EQ(page.Open(), noErr);
    TimeValue loaded = 0;
    EXPECT_EQ(GetMaxLoadedTimeInMovie(page.movie, &loaded), noErr);
    EXPECT_NEAR(loaded / 90000.0, 4.0, 0.1);
}

TEST(BadMovie, IsRefusedWhenOpenedSynchronously)
{
    OpenedMovie page("This is a text, whatever its name says.\n");
    page.data.ArriveCompletely();
    EXPECT_EQ(page.Open(0), noMovieFound);
    EXPECT_EQ(page.movie, nullptr);
    EXPECT_EQ(page.data.OpenInstances(), 0);
}

TEST(BadMovie, TellsItsStatusWhenOpenedAsynchronously)
{
    for (const std::string& bytes : {std::string(), std::string(100000, 'x')}) {
        OpenedMovie page(bytes);
        page.data.ArriveCompletely();
        ASSERT_EQ(page.Open(), noErr);
        EXPECT_EQ(GetMovieLoadState(page.movie), kMovieLoadStateError);
        EXPECT_EQ(GetMovieStatus(page.movie, nullptr), noMovieFound);
    }
}

TEST(BadMovie, PlaysWhatItCanOfACutOne)
{
    const std::string whole = Clip("mpeg1.mpg");
    std::mt19937 random(99);
    std::uniform_int_distribution<size_t> anywhere(60000, whole.size());
    for (int i = 0; i < 8; ++i) {
        OpenedMovie page(whole.substr(0, anywhere(random)));
        page.OpenAll();
        page.ClickPlay();
        page.PlayToEnd();
        EXPECT_GT(page.Statistics().picturesShown, 0);
        EXPECT_FALSE(page.Statistics().playing);
    }
}

TEST(BadMovie, SurvivesRandomDamage)
{
    std::mt19937 random(7);
    for (int i = 0; i < 10; ++i) {
        std::string bytes = Clip("tiny.mpg") + Clip("silent.mpg").substr(0, 40000);
        for (int k = 0; k < 200; ++k) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        OpenedMovie page(bytes);
        page.data.ArriveCompletely();
        if (page.Open(0) == noErr && page.ShowIfPlayable()) {
            page.ClickPlay();
            page.PlayToEnd();
            EXPECT_FALSE(page.Statistics().playing);
        } else {
            EXPECT_NE(GetMoviesError(), noErr);
        }
    }
}

TEST(StoppedMovie, ReadsNothingMore)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(70000);
    ASSERT_TRUE(page.ShowIfPlayable());
    StopMovie(page.movie);
    const int asked = page.data.Asked();
    page.data.ArriveCompletely();
    page.Idle();
    MoviesTask(page.movie, 0);
    EXPECT_EQ(page.data.Asked(), asked);
}

TEST(DisposedMovie, LeavesNothingBehindAtAnyMoment)
{
    const SInt32 movies = CountLiveObjects(kLiveMovies);
    const SInt32 instances = CountLiveObjects(kLiveComponentInstances);
    for (const size_t arrived : {0U, 1U, 100U, 5000U, 66000U, 400000U}) {
        OpenedMovie page(Clip("mpeg1.mpg"));
        ASSERT_EQ(page.Open(), noErr);
        page.data.ArriveUpTo(arrived);
        GetMovieLoadState(page.movie);
        page.ShowIfPlayable();
        page.Close();
        EXPECT_EQ(CountLiveObjects(kLiveMovies), movies);
        EXPECT_EQ(CountLiveObjects(kLiveComponentInstances), instances);
        page.data.ArriveCompletely(); // must reach nobody
    }
}

TEST(MovieLength, AnnouncedTimeGoesAndLaterTimeStillPlays)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(page.data.Size() / 2);
    ASSERT_TRUE(page.ShowIfPlayable());
    TimeValue loaded = 0;
    ASSERT_EQ(GetMaxLoadedTimeInMovie(page.movie, &loaded), noErr);
    EXPECT_EQ(DeleteMovieSegment(page.movie, loaded, GetMovieDuration(page.movie)), noErr);
    EXPECT_EQ(GetMovieDuration(page.movie), loaded);
    page.data.ArriveCompletely();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg"));
}

TEST(MovieLength, DeletingNothingDoesNothingAndDeletingWhatIsThereIsRefused)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    TimeValue loaded = 0;
    ASSERT_EQ(GetMaxLoadedTimeInMovie(page.movie, &loaded), noErr);
    EXPECT_EQ(DeleteMovieSegment(page.movie, 0, 0), noErr);
    EXPECT_EQ(DeleteMovieSegment(page.movie, 0, loaded), paramErr);
    EXPECT_EQ(GetMovieDuration(page.movie), loaded);
}

TEST(SeekingMovie, ShowsThePictureOfThatTime)
{
    // Playing to a place and seeking to it show the same pixels.
    OpenedMovie played(Clip("mpeg1.mpg"));
    played.OpenAll();
    std::vector<size_t> digests = {played.PictureDigest()};
    for (int i = 0; i < 40; ++i) {
        ASSERT_TRUE(played.Key(kRightArrowCharCode));
        digests.push_back(played.PictureDigest());
    }
    for (int i = 39; i >= 0; --i) {
        ASSERT_TRUE(played.Key(kLeftArrowCharCode));
        EXPECT_EQ(played.PictureDigest(), digests[static_cast<size_t>(i)]) << "picture " << i;
    }
}

TEST(SeekingMovie, PastTheLoadedPartStopsAtItsEnd)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(page.data.Size() / 2);
    ASSERT_TRUE(page.ShowIfPlayable());
    page.IdleUntilNothingIsPending();
    const Rect bar = page.Bar();
    EXPECT_TRUE(page.Mouse(mouseDown, bar.right - 40, bar.top + 8));
    EXPECT_TRUE(page.Mouse(mouseUp, bar.right - 40, bar.top + 8));
    EXPECT_GE(page.Statistics().picturesShown, 2);
    page.data.ArriveCompletely();
    page.ClickPlay();
    page.PlayToEnd();
    // About half of the pictures were skipped, the other half is shown.
    EXPECT_GT(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg") / 3);
    EXPECT_LT(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg") * 2 / 3);
}

TEST(SeekingMovie, PlaysTheRestOfItsSoundFromThere)
{
    OpenedMovie page(Clip("sound.mp2"), "sound.mp2");
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    const Rect bar = page.Bar();
    EXPECT_TRUE(
        page.Mouse(mouseDown, bar.left + 32 + (bar.right - bar.left - 64) / 2, bar.top + 8));
    EXPECT_TRUE(page.Mouse(mouseUp, bar.left + 32 + (bar.right - bar.left - 64) / 2, bar.top + 8));
    page.ClickPlay();
    page.PlayToEnd();
    const double seconds = static_cast<double>(page.sound.size()) / 2 / 48000;
    EXPECT_NEAR(seconds, 1.5, 0.2);
}

TEST(FinishedMovie, NeedsNoTimeAndPlaysAgainFromItsBeginning)
{
    OpenedMovie page(Clip("tiny.mpg"));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(NextToolboxDeadline(), -1);
    const SInt32 shown = page.Statistics().picturesShown;
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, 2 * shown);
}

TEST(PausedMovie, NeedsNoTime)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    page.ClickPlay();
    EXPECT_GE(NextToolboxDeadline(), page.now);
    page.ClickPlay();
    EXPECT_EQ(NextToolboxDeadline(), -1);
}

TEST(MovieDrawing, ShowsNothingBeforeTheFirstDrawAction)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.data.ArriveCompletely();
    ASSERT_EQ(page.Open(0), noErr);
    SetMovieGWorld(page.movie, page.port, nullptr);
    SetMovieActive(page.movie, 1);
    const Rect box = {0, 0, 240, 352};
    page.controller = NewMovieController(page.movie, &box, mcTopLeftMovie | mcScaleMovieToFit);
    page.Idle();
    EXPECT_FALSE(TakeDirtyRegion(page.port, nullptr));
    MCDoAction(page.controller, mcActionDraw, page.port);
    EXPECT_TRUE(TakeDirtyRegion(page.port, nullptr));
}

TEST(MovieDrawing, StaysInsideTheClip)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.data.ArriveCompletely();
    ASSERT_EQ(page.Open(0), noErr);
    SetMovieGWorld(page.movie, page.port, nullptr);
    SetMovieActive(page.movie, 1);
    const Rect box = {0, 0, 240, 352};
    page.controller = NewMovieController(page.movie, &box, mcTopLeftMovie | mcScaleMovieToFit);
    const RgnHandle clip = NewRgn();
    const Rect allowed = {50, 60, 100, 163};
    RectRgn(clip, &allowed);
    MCSetClip(page.controller, clip, nullptr);
    DisposeRgn(clip);
    MCDoAction(page.controller, mcActionDraw, page.port);
    SInt32 rowBytes = 0;
    const UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
    int outside = 0;
    int inside = 0;
    for (int v = 0; v < 400; ++v) {
        for (int h = 0; h < 500; ++h) {
            const UInt8* const p = pixels + v * rowBytes + h * 4;
            const bool isWhite = p[1] == 0xFF && p[2] == 0xFF && p[3] == 0xFF;
            const bool isAllowed =
                v >= allowed.top && v < allowed.bottom && h >= allowed.left && h < allowed.right;
            outside += !isAllowed && !isWhite;
            inside += isAllowed && !isWhite;
        }
    }
    EXPECT_EQ(outside, 0);
    EXPECT_GT(inside, 1000);
}

TEST(MovieDrawing, DoesNotTouchItsNeighboursAtAnyWidth)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    SInt32 rowBytes = 0;
    UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
    for (SInt16 width = 320; width < 360; ++width) {
        memset(pixels, 0xFF, static_cast<size_t>(rowBytes) * 400);
        const Rect bounds = {0, 0, 256, width};
        MCSetControllerBoundsRect(page.controller, &bounds);
        MCDoAction(page.controller, mcActionDraw, page.port);
        int outside = 0;
        for (int v = 0; v < 400; ++v) {
            for (int h = width; h < 500; ++h) {
                outside += pixels[v * rowBytes + h * 4 + 1] != 0xFF;
            }
        }
        EXPECT_EQ(outside, 0) << "width " << width;
    }
}

TEST(MovieController, IsTheBoxAndABarOfSixteenPixels)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    Rect bounds;
    MCGetControllerBoundsRect(page.controller, &bounds);
    EXPECT_EQ(bounds.right - bounds.left, 352);
    EXPECT_EQ(bounds.bottom - bounds.top, 240 + 16);
}

TEST(MovieController, LeavesEventsOutsideItToOthers)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    EXPECT_FALSE(page.Mouse(mouseDown, 400, 300));
    EXPECT_FALSE(page.Mouse(mouseUp, 400, 300));
    EXPECT_FALSE(page.Key('x'));
    EXPECT_FALSE(page.Statistics().playing);
}

TEST(MovieController, SilencesAndRestoresTheSoundByItsButton)
{
    OpenedMovie page(Clip("sound.mp2"), "sound.mp2");
    page.OpenAll();
    const Rect bar = page.Bar();
    EXPECT_TRUE(page.Mouse(mouseDown, bar.left + 8, bar.top + 8));
    page.ClickPlay();
    page.PlayToEnd();
    ASSERT_FALSE(page.sound.empty());
    EXPECT_TRUE(std::all_of(page.sound.begin(), page.sound.end(), [](SInt16 s) { return s == 0; }));
}

} // namespace

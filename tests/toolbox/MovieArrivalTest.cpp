// SPDX-License-Identifier: MIT
//
// Movies that are opened and played while their bytes arrive.
#include "tests/toolbox/OpenedMovie.h"

#include <random>
#include <utility>

namespace
{

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

// A movie of which half is there, played as far as that goes.
class StalledMovie : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(page.Open(), noErr);
        page.data.ArriveUpTo(page.data.Size() / 2);
        ASSERT_TRUE(page.ShowIfPlayable());
        page.ClickPlay();
        for (int tick = 0; tick < 60 * 5; ++tick) {
            page.now += kTick;
            page.Idle();
        }
        ASSERT_TRUE(page.Statistics().waiting);
    }

    OpenedMovie page{Clip("mpeg1.mpg")};
};

TEST_F(StalledMovie, NeedsNoTimeAndGoesOnWhereItStoodOnceBytesCome)
{
    EXPECT_EQ(NextToolboxDeadline(), -1);
    const SInt32 before = page.Statistics().picturesShown;
    page.data.ArriveCompletely();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg"));
    EXPECT_LT(before, ExpectedPictures("mpeg1.mpg"));
    EXPECT_EQ(page.Statistics().picturesDropped, 0);
}

TEST_F(StalledMovie, DoesNotAskAgainWhileNothingComes)
{
    const int asked = page.data.Asked();
    for (int tick = 0; tick < 60; ++tick) {
        page.now += kTick;
        page.Idle();
        MoviesTask(page.movie, 0);
    }
    EXPECT_EQ(page.data.Asked(), asked);
}

TEST_F(StalledMovie, NeedsNoTimeHoweverOftenItIsAskedAtOneMoment)
{
    for (int slice = 0; slice < 3; ++slice) {
        MoviesTask(page.movie, 0);
        page.Idle();
        EXPECT_EQ(NextToolboxDeadline(), -1) << "slice " << slice;
        EXPECT_TRUE(page.Statistics().waiting);
    }
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

} // namespace

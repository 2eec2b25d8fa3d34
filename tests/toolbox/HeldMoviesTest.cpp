// SPDX-License-Identifier: MIT
//
// Movies that may not wait for the codec libraries.
#include "tests/toolbox/OpenedMovie.h"
#include "toolbox/threads/Threads.h"

namespace
{

class HeldMovies : public testing::Test
{
protected:
    HeldMovies() : page(Clip("mpeg1.mpg"))
    {
        HoldMovies(true);
        page.data.ArriveCompletely();
    }
    ~HeldMovies() override { HoldMovies(false); }

    OpenedMovie page;
};

TEST_F(HeldMovies, SayThatTheyWait)
{
    ASSERT_EQ(page.Open(), noErr);
    for (int i = 0; i < 10; ++i) {
        MoviesTask(page.movie, 0);
        EXPECT_EQ(GetMovieLoadState(page.movie), kMovieLoadStateLoading);
    }
    EXPECT_EQ(GetMovieStatus(page.movie, nullptr), noErr);
    EXPECT_EQ(NextToolboxDeadline(), page.now);
    TimeValue loaded = -1;
    EXPECT_EQ(GetMaxLoadedTimeInMovie(page.movie, &loaded), noErr);
    EXPECT_EQ(loaded, 0);
    EXPECT_EQ(GetMovieDuration(page.movie), 0);
}

TEST_F(HeldMovies, GoOnWhenTheyAreHeldNoLonger)
{
    ASSERT_EQ(page.Open(), noErr);
    MoviesTask(page.movie, 0);
    HoldMovies(false);
    EXPECT_EQ(NextToolboxDeadline(), page.now);
    ASSERT_TRUE(page.ShowIfPlayable());
    page.IdleUntilNothingIsPending();
    EXPECT_EQ(GetMovieLoadState(page.movie), kMovieLoadStateComplete);
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg"));
}

TEST_F(HeldMovies, WaitWhereTheCallerDoes)
{
    ASSERT_EQ(page.Open(0), noErr);
    EXPECT_TRUE(page.ShowIfPlayable());
}

TEST_F(HeldMovies, CanBeDisposedOf)
{
    ASSERT_EQ(page.Open(), noErr);
    MoviesTask(page.movie, 0);
    page.Close();
    EXPECT_EQ(page.data.OpenInstances(), 0);
}

TEST(MoviePreparation, EndsOnItsOwn)
{
    PrepareMovies();
    while (!MoviesArePrepared()) {
        YieldToAnyThread();
    }
    EXPECT_TRUE(QuickTimePresent());
}

} // namespace

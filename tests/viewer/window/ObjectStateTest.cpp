// SPDX-License-Identifier: MIT
//
// What captions say.
#include "viewer/window/ObjectState.h"

#include <gtest/gtest.h>

namespace
{

MovieStatistics At(double time, double duration)
{
    MovieStatistics movie{};
    movie.timeSeconds = time;
    movie.durationSeconds = duration;
    return movie;
}

TEST(ObjectState, WhatHasNoFileNameIsCalledByAllOfItsName)
{
    EXPECT_EQ(viewer::NameToShow("http://example.org/clip.mpg", "clip.mpg"), "clip.mpg");
    EXPECT_EQ(viewer::NameToShow("http://example.org/", ""), "http://example.org/");
    EXPECT_EQ(viewer::NameToShow("-", "-"), "standard input");
}

TEST(ObjectState, TellsTheTimeOfAMovieAndItsLength)
{
    EXPECT_EQ(viewer::DescribeTime(At(0, 5)), "0:00 / 0:05");
    EXPECT_EQ(viewer::DescribeTime(At(12.9, 60)), "0:12 / 1:00");
    EXPECT_EQ(viewer::DescribeTime(At(754, 3599)), "12:34 / 59:59");
    EXPECT_EQ(viewer::DescribeTime(At(3723.4, 36000)), "1:02:03 / 10:00:00");
}

TEST(ObjectState, TellsNoTimeWhereThereIsNone)
{
    EXPECT_EQ(viewer::DescribeTime(At(0, 0)), "");
}

TEST(ObjectState, AllOfAMovieHasPassedAtItsEnd)
{
    MovieStatistics movie = At(3.97, 3.97);
    EXPECT_EQ(viewer::DescribeTime(movie), "0:03 / 0:04");
    movie.atEnd = 1;
    EXPECT_EQ(viewer::DescribeTime(movie), "0:04 / 0:04");
}

TEST(ObjectState, TellsAMovieThatIsPausedFromOneThatWasNotPlayed)
{
    EXPECT_EQ(viewer::DescribePlaying(At(0, 60)), "");
    EXPECT_EQ(viewer::DescribePlaying(At(12.5, 60)), "paused");
}

TEST(ObjectState, TellsAMovieThatPlaysFromOneThatHasFinished)
{
    MovieStatistics movie = At(60, 60);
    movie.atEnd = 1;
    EXPECT_EQ(viewer::DescribePlaying(movie), "finished");
    movie.playing = 1;
    EXPECT_EQ(viewer::DescribePlaying(movie), "playing");
}

} // namespace

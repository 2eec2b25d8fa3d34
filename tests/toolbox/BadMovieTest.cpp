// SPDX-License-Identifier: MIT
//
// What is no movie, or a damaged one; movies that are stopped and disposed of early.
#include "tests/toolbox/OpenedMovie.h"
#include "toolbox/probe/Probe.h"

#include <random>

using namespace std::string_literals;

namespace
{

// A program stream of those pictures without a time stamp (ISO 11172-1 2.4.3) or a picture rate
// (ISO 11172-2 2.4.3.2), so that nothing tells their times.
std::string TimelessStreamOf(std::string pictures)
{
    constexpr size_t kRate = 7;
    for (size_t at = 0; (at = pictures.find("\0\0\1\xB3"s, at)) != std::string::npos; at += kRate)
        pictures[at + kRate] = static_cast<char>(pictures[at + kRate] & 0xF0);
    constexpr size_t kMostInPacket = 2000;
    std::string stream;
    for (size_t at = 0; at < pictures.size(); at += kMostInPacket) {
        const std::string contents = "\x0F" + pictures.substr(at, kMostInPacket);
        stream += "\0\0\1\xBA\x21\0\1\0\1\x80\0\1\0\0\1\xE0"s;
        stream += static_cast<char>(contents.size() >> 8);
        stream += static_cast<char>(contents.size());
        stream += contents;
    }
    return stream;
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

TEST(BadMovie, MayNameColoursThatThereAreNot)
{
    // A sequence display extension with colour matrix 42 behind the sequence extension.
    std::string bytes = Clip("video.m2v");
    const size_t extension = bytes.find(std::string("\0\0\1\xB5", 4));
    ASSERT_NE(extension, std::string::npos);
    bytes.insert(extension + 10, std::string("\0\0\1\xB5\x2B\1\1\x2A\2\xC2\4\x80", 12));
    OpenedMovie page(bytes, "clip.m2v");
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures("video.m2v"));
}

TEST(BadMovie, PlaysPicturesWithoutTimes)
{
    OpenedMovie page(TimelessStreamOf(Clip("video.m1v")));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_FALSE(page.Statistics().playing);
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures("video.m1v"));
}

TEST(BadMovie, DoesNotWaitForATimeBehindALongFirstPicture)
{
    const std::string startCode = "\0\0\1\0"s;
    std::string pictures = Clip("video.m1v");
    const size_t second = pictures.find(startCode, pictures.find(startCode) + 1);
    pictures.insert(second, 300000, '\0'); // stuffing (ISO 11172-2 2.4.1)
    const std::string untilThen = TimelessStreamOf(pictures.substr(0, second + 300100));
    OpenedMovie page(TimelessStreamOf(pictures));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(untilThen.size());
    EXPECT_TRUE(page.ShowIfPlayable());
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

} // namespace

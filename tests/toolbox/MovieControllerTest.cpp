// SPDX-License-Identifier: MIT
//
// The standard controller: its parts and the events it takes.
#include "tests/toolbox/OpenedMovie.h"

namespace
{

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

class ControllerOfAPausedMovie : public testing::Test
{
protected:
    ControllerOfAPausedMovie()
    {
        page.OpenAll();
        page.IdleUntilNothingIsPending();
    }

    bool Keyboard(UInt16 what, char code)
    {
        EventRecord event{};
        event.what = what;
        event.message = static_cast<UInt8>(code);
        return MCIsPlayerEvent(page.controller, &event) == 1;
    }

    OpenedMovie page{Clip("mpeg1.mpg")};
};

TEST_F(ControllerOfAPausedMovie, StepsOnForAsLongAsAnArrowIsHeld)
{
    ASSERT_TRUE(Keyboard(keyDown, kRightArrowCharCode));
    const double first = page.Statistics().timeSeconds;
    EXPECT_TRUE(Keyboard(autoKey, kRightArrowCharCode));
    EXPECT_GT(page.Statistics().timeSeconds, first);
}

TEST_F(ControllerOfAPausedMovie, LeavesTheReleaseOfAKeyToOthers)
{
    EXPECT_FALSE(Keyboard(keyUp, kSpaceCharCode));
    EXPECT_FALSE(page.Statistics().playing);
}

TEST_F(ControllerOfAPausedMovie, LeavesThePointersMovesToOthersUnlessItsThumbIsHeld)
{
    const Rect bar = page.Bar();
    const auto move = [&] { return page.Mouse(osEvt, bar.left + 100, bar.top + 8); };
    EXPECT_FALSE(move());
    ASSERT_TRUE(page.Mouse(mouseDown, bar.left + 60, bar.top + 8));
    EXPECT_TRUE(move());
    ASSERT_TRUE(page.Mouse(mouseUp, bar.left + 100, bar.top + 8));
    EXPECT_FALSE(move());
}

TEST_F(ControllerOfAPausedMovie, LetsItsThumbGoWhereverTheButtonIsReleased)
{
    const Rect bar = page.Bar();
    ASSERT_TRUE(page.Mouse(mouseDown, bar.left + 60, bar.top + 8));
    EXPECT_TRUE(page.Mouse(mouseUp, bar.right + 10, bar.bottom + 10));
    EXPECT_FALSE(page.Mouse(osEvt, bar.left + 100, bar.top + 8));
}

// Events tell of places on the screen.
class InAWindowBesideTheCorner : public testing::Test
{
protected:
    InAWindowBesideTheCorner()
    {
        const Rect onScreen = {kTop, kLeft, kTop + 400, kLeft + 500};
        EXPECT_EQ(ResizeWindowPort(page.port, &onScreen), noErr);
        page.OpenAll();
        page.IdleUntilNothingIsPending();
        bar = page.Bar();
    }

    static constexpr SInt16 kTop = 300;
    static constexpr SInt16 kLeft = 70;
    OpenedMovie page{Clip("mpeg1.mpg")};
    Rect bar{};
};

TEST_F(InAWindowBesideTheCorner, IsPressedWhereItStandsOnTheScreen)
{
    EXPECT_FALSE(page.Mouse(mouseDown, bar.left + 24, bar.top + 8));
    EXPECT_FALSE(page.Statistics().playing);
    EXPECT_TRUE(page.Mouse(mouseDown, kLeft + bar.left + 24, kTop + bar.top + 8));
    EXPECT_TRUE(page.Statistics().playing);
}

TEST_F(InAWindowBesideTheCorner, IsReleasedWhereItStandsOnTheScreen)
{
    EXPECT_FALSE(page.Mouse(mouseUp, bar.left + 24, bar.top + 8));
    EXPECT_TRUE(page.Mouse(mouseUp, kLeft + bar.left + 24, kTop + bar.top + 8));
}

TEST_F(InAWindowBesideTheCorner, ItsThumbFollowsThePointerOnTheScreen)
{
    ASSERT_TRUE(page.Mouse(mouseDown, kLeft + bar.left + 40, kTop + bar.top + 8));
    ASSERT_TRUE(page.Mouse(osEvt, kLeft + (bar.left + bar.right) / 2, kTop + bar.top + 8));
    const double length = page.Statistics().durationSeconds;
    EXPECT_NEAR(page.Statistics().timeSeconds, length / 2, length / 50);
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

// Eight seconds long, all of it there, and paused.
class SoughtByKeys : public testing::Test
{
protected:
    SoughtByKeys()
    {
        page.OpenAll();
        page.IdleUntilNothingIsPending();
    }
    double Time() const { return page.Statistics().timeSeconds; }

    OpenedMovie page{Clip("early.mpg")};
};

TEST_F(SoughtByKeys, WithShiftAnArrowGoesFiveSeconds)
{
    const size_t first = page.PictureDigest();
    EXPECT_TRUE(page.Key(kRightArrowCharCode, shiftKey));
    EXPECT_NEAR(Time(), 5, 1e-6);
    EXPECT_NE(page.PictureDigest(), first);
    EXPECT_TRUE(page.Key(kLeftArrowCharCode, shiftKey));
    EXPECT_EQ(Time(), 0);
    EXPECT_EQ(page.PictureDigest(), first);
}

TEST_F(SoughtByKeys, WithCommandAnArrowGoesAMinuteButNotBeyondTheMovie)
{
    EXPECT_TRUE(page.Key(kRightArrowCharCode, cmdKey));
    EXPECT_NEAR(Time(), page.Statistics().durationSeconds, 1e-6);
    EXPECT_TRUE(page.Key(kLeftArrowCharCode, cmdKey));
    EXPECT_EQ(Time(), 0);
}

TEST_F(SoughtByKeys, ItGoesOnPlayingFromThere)
{
    page.ClickPlay();
    page.Key(kRightArrowCharCode, shiftKey);
    EXPECT_TRUE(page.Statistics().playing);
    const SInt64 before = page.now;
    page.PlayToEnd();
    EXPECT_NEAR(static_cast<double>(page.now - before) / 1e6, 3, 0.1);
}

TEST_F(SoughtByKeys, ItIsAtItsEndAfterPlayingAndNoLongerWhenSentBack)
{
    EXPECT_FALSE(page.Statistics().atEnd);
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_TRUE(page.Statistics().atEnd);
    EXPECT_NEAR(Time(), page.Statistics().durationSeconds, 1e-6);
    page.Key(kLeftArrowCharCode, shiftKey);
    EXPECT_FALSE(page.Statistics().atEnd);
    EXPECT_FALSE(page.Statistics().playing);
}

// A bar of sound that is as wide as told.
class NarrowBar : public testing::TestWithParam<int>
{
protected:
    NarrowBar()
    {
        page.data.ArriveCompletely();
        EXPECT_EQ(page.Open(0), noErr);
        SetMovieGWorld(page.movie, page.port, nullptr);
        SetMovieActive(page.movie, 1);
        const Rect box = {0, 0, 0, static_cast<SInt16>(GetParam())};
        page.controller = NewMovieController(page.movie, &box, mcTopLeftMovie | mcScaleMovieToFit);
        MCDoAction(page.controller, mcActionDraw, page.port);
    }
    // Whether any press at h starts or stops the movie.
    bool PlaysWhenPressedAt(int h)
    {
        const bool before = page.Statistics().playing;
        EXPECT_TRUE(page.Mouse(mouseDown, h, 8));
        EXPECT_TRUE(page.Mouse(mouseUp, h, 8));
        return page.Statistics().playing != before;
    }

    OpenedMovie page{Clip("sound.mp2"), "sound.mp2"};
};

TEST_P(NarrowBar, IsAsWideAsAskedAndSixteenPixelsHigh)
{
    Rect bounds;
    MCGetControllerBoundsRect(page.controller, &bounds);
    EXPECT_EQ(bounds.right - bounds.left, GetParam());
    EXPECT_EQ(bounds.bottom - bounds.top, 16);
}

TEST_P(NarrowBar, CanBePlayed)
{
    bool canBePlayed = false;
    for (int h = 0; h < GetParam() && !canBePlayed; ++h) {
        canBePlayed = PlaysWhenPressedAt(h);
    }
    EXPECT_TRUE(canBePlayed);
}

TEST_P(NarrowBar, DrawsNothingBesideIt)
{
    SInt32 rowBytes = 0;
    const UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
    int beside = 0;
    for (int v = 0; v < 16; ++v) {
        for (int h = GetParam(); h < 400; ++h) {
            beside += pixels[v * rowBytes + h * 4 + 1] != 0xFF;
        }
    }
    EXPECT_EQ(beside, 0);
}

INSTANTIATE_TEST_SUITE_P(MovieController, NarrowBar,
                         testing::Values(1, 5, 11, 16, 31, 32, 40, 55, 56, 95, 96, 100));

class BarWithoutVolume : public NarrowBar
{
};

TEST_P(BarWithoutVolume, BeginsWithPlay)
{
    EXPECT_TRUE(PlaysWhenPressedAt(0));
}

INSTANTIATE_TEST_SUITE_P(MovieController, BarWithoutVolume, testing::Values(1, 16, 31));

TEST(MovieController, HidesTheStepsBeforeTheSlider)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    const size_t first = page.PictureDigest();
    const Rect bounds = {0, 0, 240 + 16, 90};
    MCSetControllerBoundsRect(page.controller, &bounds);
    MCDoAction(page.controller, mcActionDraw, page.port);
    EXPECT_TRUE(page.Mouse(mouseDown, 89, page.Bar().top + 8)); // the slider's end
    EXPECT_TRUE(page.Mouse(mouseUp, 89, page.Bar().top + 8));
    EXPECT_NE(page.PictureDigest(), first);
}

// The left edge of the thumb, -1 if there is none.
int ThumbLeft(const OpenedMovie& page)
{
    SInt32 rowBytes = 0;
    const UInt8* const row =
        GetPortPixels(page.port, &rowBytes) + ptrdiff_t{page.Bar().top + 4} * rowBytes;
    for (int h = page.Bar().left + 32; h < page.Bar().right; ++h) {
        const UInt8* const p = row + ptrdiff_t{h} * 4;
        if (p[1] == 0x33 && p[2] == 0x55 && p[3] == 0x99) {
            return h;
        }
    }
    return -1;
}

class ThumbAtTheEnd : public testing::TestWithParam<const char*>
{
};

TEST_P(ThumbAtTheEnd, StandsAtTheSlidersEnd)
{
    OpenedMovie page(Clip(GetParam()), GetParam());
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    page.IdleUntilNothingIsPending();
    page.Idle();
    EXPECT_EQ(ThumbLeft(page), page.Bar().right - 32 - 8);
}

TEST_P(ThumbAtTheEnd, IsWhereTheMoviesLengthEnds)
{
    OpenedMovie page(Clip(GetParam()), GetParam());
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    page.IdleUntilNothingIsPending();
    TimeValue loaded = 0;
    EXPECT_EQ(GetMaxLoadedTimeInMovie(page.movie, &loaded), noErr);
    EXPECT_EQ(GetMovieDuration(page.movie), loaded);
    EXPECT_EQ(DeleteMovieSegment(page.movie, loaded, loaded), noErr);
}

INSTANTIATE_TEST_SUITE_P(MovieController, ThumbAtTheEnd,
                         testing::Values("mpeg1.mpg", "mpeg2.mpg", "early.mpg", "video.m1v",
                                         "sound.mp3"));

TEST(MovieController, HasItsThumbAtTheEndThoughPicturesWereCountedThatAreNeverShown)
{
    // A recording cut in the middle: pictures that need what was cut off come right at its start.
    const std::string whole = Clip("video.m1v");
    const std::string header = {"\0\0\1\xB3", 4};
    OpenedMovie page(whole.substr(whole.find(header, whole.find(header) + 1)));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    page.IdleUntilNothingIsPending();
    page.Idle();
    EXPECT_EQ(ThumbLeft(page), page.Bar().right - 32 - 8);
}

} // namespace

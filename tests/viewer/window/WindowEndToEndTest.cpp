// SPDX-License-Identifier: MIT
//
// What a user sees and does, in a real X server.
#include "tests/viewer/window/RunningWindow.h"
#include "tests/viewer/window/ShownPage.h"
#include "toolbox/Types.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using testing::HasSubstr;
using testing::IsEmpty;

// Where the first object of a page stands: a movie of 352 by 240.
constexpr int kBarMiddle = kMargin + 240 + 8;
constexpr int kPlayButton = kMargin + 24;
constexpr int kFocusColor = 0x4A7CBE;
constexpr int kThumbColor = 0x335599;
constexpr int kNoticeColor = 0x2B3038;

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool ShowsPicture(const Screenshot& shot)
{
    return shot.At(kMargin + 30, kMargin + 150) == 0xFE0000 ||
           (shot.At(kMargin + 30, kMargin + 150) >> 16) > 0xE0;
}

bool ShowsMovie(const Screenshot& shot)
{
    return (shot.At(kMargin + 30, kMargin + 150) & 0xFFFF) < 0x2020 && ShowsPicture(shot) &&
           shot.At(kMargin + 1, kBarMiddle) == 0xDDDDDD;
}

std::string At(int x, int y)
{
    return "mousemove " + std::to_string(x) + " " + std::to_string(y) + " ";
}

class WindowEndToEnd : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        if (HiddenScreen::IsPossible()) {
            screen = std::make_unique<HiddenScreen>();
        }
    }
    static void TearDownTestSuite() { screen.reset(); }
    void SetUp() override
    {
        if (screen == nullptr) {
            GTEST_SKIP() << "Xvfb, xdotool or import is missing";
        }
    }

    static inline std::unique_ptr<HiddenScreen> screen;
};

TEST_F(WindowEndToEnd, AMoviePlaysAtAClickAndQEndsThePage)
{
    RunningWindow window(*screen, {Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    const std::vector<int> first = NumberShown(window.Look());
    window.Do(At(kPlayButton, kBarMiddle) + "click 1");
    EXPECT_TRUE(
        window.WaitUntil([&](const Screenshot& shot) { return NumberShown(shot) != first; }));
    window.Do("key q");
    const RunningWindow::Result result = window.WaitForEnd();
    EXPECT_EQ(result.status, 0);
    EXPECT_GT(result.report["objects"][0]["pictures_shown"], 1);
    EXPECT_GT(result.report["objects"][0]["sound_samples"], 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(window.LeftBehind(), IsEmpty());
}

TEST_F(WindowEndToEnd, TheSliderCanBeDragged)
{
    RunningWindow window(*screen, {Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    const std::vector<int> first = NumberShown(window.Look());
    const int target = kMargin + 250;
    window.Do(At(kMargin + 38, kBarMiddle) + "mousedown 1 " + At(kMargin + 150, kBarMiddle) +
              At(target, kBarMiddle) + "mouseup 1");
    EXPECT_TRUE(window.WaitUntil([&](const Screenshot& shot) {
        return shot.At(target, kBarMiddle) == kThumbColor && NumberShown(shot) != first;
    }));
}

// The line of a caption that tells the time.
std::vector<int> DetailsShown(const Screenshot& shot, int areaBottom)
{
    std::vector<int> pixels;
    for (int y = areaBottom + 24; y < areaBottom + 38; ++y) {
        for (int x = kMargin; x < kMargin + 240; ++x) {
            pixels.push_back(shot.At(x, y));
        }
    }
    return pixels;
}

TEST_F(WindowEndToEnd, ACaptionTellsTheTimeWhileASoundPlays)
{
    constexpr int kSoundBottom = kMargin + 17;
    RunningWindow window(*screen, {"--play", Clip("sound.mp3")});
    std::set<std::vector<int>> seen;
    EXPECT_TRUE(window.WaitUntil([&](const Screenshot& shot) {
        seen.insert(DetailsShown(shot, kSoundBottom));
        return seen.size() >= 4; // there is another one each second
    }));
}

TEST_F(WindowEndToEnd, WithShiftAnArrowSeeksInTheFirstMovieThoughNoneHasTheFocus)
{
    RunningWindow window(*screen, {Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    const std::vector<int> first = NumberShown(window.Look());
    const auto isAtEnd = [](const Screenshot& shot) {
        return shot.At(kMargin + 352 - 32 - 4, kBarMiddle) == kThumbColor;
    };
    window.Do("key shift+Right");
    EXPECT_TRUE(window.WaitUntil(
        [&](const Screenshot& shot) { return NumberShown(shot) != first && isAtEnd(shot); }));
    window.Do("key shift+Left");
    EXPECT_TRUE(window.WaitUntil(
        [&](const Screenshot& shot) { return NumberShown(shot) == first && !isAtEnd(shot); }));
}

TEST_F(WindowEndToEnd, TheSpaceBarPlaysAndPausesTheMovieWithTheFocus)
{
    RunningWindow window(*screen, {Clip("silent.mpg"), Clip("mpeg2.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsPicture));
    window.Do("key Tab");
    EXPECT_TRUE(window.WaitUntil(
        [](const Screenshot& shot) { return shot.At(kMargin - 3, kMargin + 20) == kFocusColor; }));
    window.Do("key space");
    window.Do("key q");
    const RunningWindow::Result result = window.WaitForEnd();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.report["objects"][1]["pictures_shown"], 1);
}

TEST_F(WindowEndToEnd, ANarrowWindowPutsObjectsBelowEachOther)
{
    RunningWindow window(*screen, {Clip("mpeg1.mpg"), Clip("mpeg1.mpg")});
    const auto isSecondAt = [](int x, int y) {
        return [=](const Screenshot& shot) {
            return ShowsMovie(shot) && shot.At(x + 1, y + 248) == 0xDDDDDD;
        };
    };
    const int right = kMargin + 352 + 20;
    const int below = kMargin + 257 + 40 + 20;
    ASSERT_TRUE(window.WaitUntil(isSecondAt(right, kMargin)));
    window.Do("search --onlyvisible --name vornview windowsize 420 640");
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) { return shot.At(500, 300) == 0; }));
    window.Do("search --onlyvisible --name vornview windowmove 0 0");
    EXPECT_TRUE(window.WaitUntil(isSecondAt(kMargin, below)));
}

TEST_F(WindowEndToEnd, APageThatIsTooHighScrolls)
{
    const std::vector<std::string> many(8, Clip("mpeg1.mpg"));
    RunningWindow window(*screen, many);
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    window.Do("key End");
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) { return !ShowsMovie(shot); }));
    window.Do("key Home");
    EXPECT_TRUE(window.WaitUntil(ShowsMovie));
    window.Do(At(500, 300) + "click 5 click 5 click 5");
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) { return !ShowsMovie(shot); }));
    window.Do("click 4 click 4 click 4 click 4");
    EXPECT_TRUE(window.WaitUntil(ShowsMovie));
}

TEST_F(WindowEndToEnd, ThePlusKeyEnlargesThePage)
{
    RunningWindow window(*screen, {Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    const auto isEnlarged = [](const Screenshot& shot) {
        return shot.At(kMargin + 400, kMargin + 100) != kBackground && ShowsPicture(shot);
    };
    EXPECT_FALSE(isEnlarged(window.Look()));
    window.Do("key plus");
    EXPECT_TRUE(window.WaitUntil(isEnlarged));
    window.Do("key 0");
    EXPECT_TRUE(window.WaitUntil(ShowsMovie));
}

TEST_F(WindowEndToEnd, ADoubleClickShowsAnObjectAloneAndEscapeEndsThat)
{
    RunningWindow window(*screen, {Clip("silent.mpg"), Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsPicture));
    window.Do(At(kMargin + 80, kMargin + 60) + "click --repeat 2 --delay 60 1");
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        return shot.At(500, 350) != kBackground && shot.At(900, 60) != kBackground;
    }));
    window.Do("key Escape");
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        return shot.At(kMargin / 2, 600) == kBackground && ShowsPicture(shot);
    }));
}

TEST_F(WindowEndToEnd, F1ShowsTheKeysAndEscapeHidesThem)
{
    RunningWindow window(*screen, {Clip("silent.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsPicture));
    const Screenshot before = window.LookAtRest();
    window.Do("key F1");
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        int paper = 0;
        for (int y = 0; y < shot.height; ++y) {
            paper += shot.At(shot.width / 2, y) == 0xFDFDFE ? 1 : 0;
        }
        return paper > 200;
    }));
    window.Do("key Escape");
    EXPECT_TRUE(window.WaitUntil([&](const Screenshot& shot) { return shot == before; }));
}

TEST_F(WindowEndToEnd, PAndSSavePicturesIntoTheFolder)
{
    RunningWindow window(*screen, {Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    window.Do("key p key s key q");
    const RunningWindow::Result result = window.WaitForEnd();
    EXPECT_THAT(result.err, HasSubstr("page.png"));
    EXPECT_EQ(ReadScreenshot(window.Folder().Path("page.png")).width, HiddenScreen::kWidth);
    EXPECT_EQ(ReadScreenshot(window.Folder().Path("mpeg1.png")).width, 352);
}

TEST_F(WindowEndToEnd, AMovieAloneShowsItsTimeForAMomentWhenItIsSought)
{
    RunningWindow window(*screen, {Clip("silent.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsPicture));
    window.Do("key F11");
    const auto hasNotice = [](const Screenshot& shot) {
        return shot.At(HiddenScreen::kWidth / 2, HiddenScreen::kHeight - 18) == kNoticeColor;
    };
    ASSERT_TRUE(window.WaitUntil(
        [&](const Screenshot& shot) { return shot.At(5, 300) == 0x181818 && !hasNotice(shot); }));
    EXPECT_TRUE(window.WaitUntil([&](const Screenshot& shot) {
        window.Do("key shift+Right"); // again where a busy machine has missed it
        return hasNotice(shot);
    }));
    EXPECT_TRUE(window.WaitUntil([&](const Screenshot& shot) { return !hasNotice(shot); }));
}

TEST_F(WindowEndToEnd, AWordOnTheScreenTellsOfASavedPictureForAWhile)
{
    RunningWindow window(*screen, {Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    const Screenshot before = window.LookAtRest();
    window.Do("key s");
    constexpr int kNoticeBottom = HiddenScreen::kHeight - 16;
    EXPECT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        return shot.At(HiddenScreen::kWidth / 2, kNoticeBottom - 2) == kNoticeColor;
    }));
    EXPECT_TRUE(window.WaitUntil([&](const Screenshot& shot) { return shot == before; }));
}

TEST_F(WindowEndToEnd, AStreamThatStandsStillDoesNotStopThePage)
{
    const TestFolder folder;
    const std::string path = folder.Path("stream.mpg");
    mkfifo(path.c_str(), 0600);
    const int stream = open(path.c_str(), O_RDWR | O_CLOEXEC);
    const std::string clip = ReadFile(Clip("mpeg1.mpg")).substr(0, 300'000);
    std::thread writer([&] {
        for (size_t done = 0; done < clip.size();) {
            const ssize_t count = write(stream, clip.data() + done, clip.size() - done);
            done += count > 0 ? static_cast<size_t>(count) : 0;
        }
    });
    RunningWindow window(*screen, {path});
    EXPECT_TRUE(window.WaitUntil(ShowsMovie));
    writer.join();
    window.Do("key q");
    EXPECT_EQ(window.WaitForEnd().status, 0);
    EXPECT_THAT(window.LeftBehind(), IsEmpty());
    close(stream);
}

TEST_F(WindowEndToEnd, NothingIsLeftBehindWheneverItIsEnded)
{
    for (const int milliseconds : {5, 30, 60, 120, 250, 500}) {
        RunningWindow window(*screen, {"--play", "--arrive", "500000", Clip("mpeg1.mpg"),
                                       Clip("mpeg2.mpg"), Clip("sound.mp3")});
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        window.Signal(SIGTERM);
        window.WaitForEnd();
        EXPECT_THAT(window.LeftBehind(), IsEmpty()) << milliseconds;
    }
}

TEST_F(WindowEndToEnd, AMovieThatHasEndedLetsTheProgramSleep)
{
    RunningWindow window(*screen, {"--play", Clip("tiny.mpg")});
    constexpr int kSeconds = 5;
    std::this_thread::sleep_for(std::chrono::seconds(4));
    const long before = window.CountSleeps();
    std::this_thread::sleep_for(std::chrono::seconds(kSeconds));
    EXPECT_LE(window.CountSleeps() - before, 2); // 0.4 a second
}

TEST_F(WindowEndToEnd, SeveralMoviesPlayTogether)
{
    RunningWindow window(*screen, {"--play", Clip("mpeg1.mpg"), Clip("sound.mp3"),
                                   Clip("mpeg2.mpg"), "--until", "3"});
    const RunningWindow::Result result = window.WaitForEnd();
    EXPECT_EQ(result.status, 0);
    for (const auto& object : result.report["objects"]) {
        EXPECT_GT(object["sound_samples"], 0);
    }
}

// A machine without sound, and one whose device cannot be opened.
class WithoutSound : public WindowEndToEnd, public testing::WithParamInterface<const char*>
{
};

TEST_P(WithoutSound, PicturesPlayOnAndTheUserIsToldOnce)
{
    RunningWindow window(*screen, {"--play", Clip("mpeg1.mpg"), Clip("mpeg2.mpg"), "--until", "3"},
                         GetParam());
    const RunningWindow::Result result = window.WaitForEnd();
    EXPECT_EQ(result.status, 0);
    for (const auto& object : result.report["objects"]) {
        EXPECT_GT(object["pictures_shown"].get<int>() + object["pictures_dropped"].get<int>(), 60);
    }
    EXPECT_THAT(result.err, HasSubstr("no sound can be heard ("));
    EXPECT_THAT(result.err, HasSubstr("movies play without it"));
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
}

INSTANTIATE_TEST_SUITE_P(Devices, WithoutSound, testing::Values("none", "disk"));

} // namespace

// SPDX-License-Identifier: MIT
#include "tests/movie/PlaybackTest.h"

namespace test
{
namespace
{

const Calls kDisplayCalls = {"GetPort",
                             "MCGetVisible",
                             "MCGetControllerBoundsRect",
                             "MCSetControllerBoundsRect",
                             "NewRgn",
                             "GetClip",
                             "MCSetClip",
                             "DisposeRgn",
                             "GetWindowFromPort",
                             "MCDoAction",
                             "GetMoviesError"};

class MovieDisplay : public PlaybackTest
{
};

TEST_F(MovieDisplay, DisplaysNothingWithoutAMovieOrController)
{
    auto plugin = MakePlugin();
    plugin->Display(area, 0);
    EXPECT_EQ(plugin->moviePort, port);
    plugin->OpenMovie(true, true);
    probe.Forget();
    plugin->Display(area, 0);
    EXPECT_EQ(probe.Calls(kDisplayCalls), Calls{"GetPort"});
}

TEST_F(MovieDisplay, DisplaysInItsOrder)
{
    auto plugin = MakePlayingPlugin();
    Movies().controllerBounds = {0, 0, 0, 0};
    plugin->SetDisplayRect({0, 0, 101, 200});
    plugin->Display(area, 0);
    EXPECT_EQ(probe.Calls(kDisplayCalls),
              (Calls{"GetPort", "MCGetVisible", "MCGetControllerBoundsRect",
                     "MCSetControllerBoundsRect 10,20,110,220", "NewRgn", "GetClip",
                     "MCSetClip no-movie-clip", "DisposeRgn", "GetWindowFromPort", "MCDoAction 2",
                     "GetMoviesError"}));
    EXPECT_EQ(Movies().actionParameter, GetWindowFromPort(port));
}

TEST_F(MovieDisplay, LeavesAControllerAloneThatIsInItsPlace)
{
    auto plugin = MakePlayingPlugin();
    Movies().controllerBounds = {10, 20, 110, 220};
    plugin->SetDisplayRect({0, 0, 101, 200});
    plugin->Display(area, 0);
    EXPECT_EQ(probe.Count("MCSetControllerBoundsRect"), 0);
    EXPECT_EQ(probe.Count("MCDoAction"), 1);
}

TEST_F(MovieDisplay, DoesNotMoveAHiddenController)
{
    auto plugin = MakePlayingPlugin();
    Movies().controllerVisible = 0;
    plugin->Display(area, 0);
    EXPECT_EQ(probe.Calls({"MCGetControllerBoundsRect", "MCSetControllerBoundsRect"}), Calls{});
    EXPECT_EQ(probe.Count("MCDoAction"), 1);
}

TEST_F(MovieDisplay, WhatIdleAddsToTheHeightDisplayTakesOffAgain)
{
    auto plugin = MakeOpenedPlugin();
    Movies().controllerBounds = {0, 0, 116, 200};
    plugin->Idle(area, 0);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,117,200"});
    const Rect there{40, 50, 157, 250};
    plugin->Display(there, 0);
    EXPECT_EQ(probe.Calls({"MCSetControllerBoundsRect"}),
              Calls{"MCSetControllerBoundsRect 40,50,156,250"});
}

TEST_F(MovieDisplay, DropsTheErrorOfDrawing)
{
    auto plugin = MakePlayingPlugin();
    Movies().moviesError = invalidMovie;
    EXPECT_NO_THROW(plugin->Display(area, 0));
    EXPECT_EQ(Movies().moviesError, noErr); // asked for, and so forgotten
}

TEST_F(MovieDisplay, KnowsThatItDraws)
{
    auto plugin = MakePlayingPlugin();
    Calls raisedIn;
    Movies().onCall = [&](const std::string& call) {
        if (plugin->inControllerCall) {
            raisedIn.push_back(call);
        }
    };
    plugin->Display(area, 0);
    EXPECT_EQ(raisedIn, Calls{"MCDoAction 2"});
    EXPECT_FALSE(plugin->inControllerCall);
}

TEST_F(MovieDisplay, KnowsThatDrawingIsOverWhenItThrows)
{
    auto plugin = MakePlayingPlugin();
    Movies().onCall = [](const std::string& call) {
        if (call == "MCDoAction 2") {
            throw OSErr{ioErr};
        }
    };
    EXPECT_EQ(ThrownBy([&] { plugin->Display(area, 0); }), ioErr);
    EXPECT_FALSE(plugin->inControllerCall);
    plugin->inControllerCall = true; // within another call the outer value comes back
    EXPECT_EQ(ThrownBy([&] { plugin->Display(area, 0); }), ioErr);
    EXPECT_TRUE(plugin->inControllerCall);
}

// Clicks --------------------------------------------------------------------------------------

TEST_F(MovieDisplay, TakesNoClickWithoutAController)
{
    auto plugin = MakeOpenedPlugin();
    Movies().isPlayerEvent = 1;
    EXPECT_FALSE(plugin->HandleClick(area, {}));
    EXPECT_EQ(probe.Count("MCIsPlayerEvent"), 0);
}

TEST_F(MovieDisplay, TakesAClickThatTheControllerTakes)
{
    auto plugin = MakePlayingPlugin();
    EventRecord event{};
    event.what = mouseDown;
    Movies().isPlayerEvent = 1;
    EXPECT_TRUE(plugin->HandleClick(area, event));
    Movies().isPlayerEvent = 0;
    EXPECT_FALSE(plugin->HandleClick(area, event));
    Movies().isPlayerEvent = 2; // true is exactly 1
    EXPECT_FALSE(plugin->HandleClick(area, event));
    EXPECT_EQ(probe.Calls({"MCSetClip", "MCIsPlayerEvent"})[0], "MCSetClip no-movie-clip");
    EXPECT_EQ(probe.Calls({"MCSetClip", "MCIsPlayerEvent"})[1], "MCIsPlayerEvent 1");
}

TEST_F(MovieDisplay, AClickDoesNotChangeWhereTheMovieDraws)
{
    auto plugin = MakePlayingPlugin();
    plugin->moviePort = nullptr;
    plugin->HandleClick(area, {});
    EXPECT_EQ(plugin->moviePort, nullptr);
}

TEST_F(MovieDisplay, KnowsThatItHandlesAClick)
{
    auto plugin = MakePlayingPlugin();
    Calls raisedIn;
    Movies().onCall = [&](const std::string& call) {
        if (plugin->inControllerCall) {
            raisedIn.push_back(call);
        }
    };
    plugin->HandleClick(area, {});
    EXPECT_EQ(raisedIn, (Calls{"MCSetClip no-movie-clip", "MCIsPlayerEvent 0"}));
    EXPECT_FALSE(plugin->inControllerCall);
    Movies().onCall = [](const std::string&) { throw OSErr{ioErr}; };
    EXPECT_EQ(ThrownBy([&] { plugin->HandleClick(area, {}); }), ioErr);
    EXPECT_FALSE(plugin->inControllerCall);
    Movies().onCall = nullptr;
}

} // namespace
} // namespace test

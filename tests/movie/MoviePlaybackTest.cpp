// SPDX-License-Identifier: MIT
#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"
#include "toolbox/gestalt/Gestalt.h"

#include <cstring>

namespace test
{
namespace
{

const Calls kIdleCalls = {
    "GetMovieLoadState", "GetMovieStatus",     "GetGWorld",    "SetMovieGWorld",
    "GetMovieBox",       "NewMovieController", "MCGetVisible", "MCGetControllerBoundsRect",
    "SetMovieActive",    "MCSetClip",          "MCDoAction"};
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

bool operator==(const Rect& a, const Rect& b)
{
    return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}

class MoviePlayback : public MovieTest
{
protected:
    MoviePlayback() { Movies().movieBox = {5, 6, 105, 206}; }

    // A plug-in whose movie is open but has no controller.
    std::unique_ptr<VornMoviePlugin> MakeOpenedPlugin()
    {
        auto plugin = MakePlugin();
        plugin->moviePort = port;
        EXPECT_EQ(plugin->OpenMovie(true, true), noErr);
        probe.Forget();
        return plugin;
    }
    Rect DisplayRect(const Rect& natural, UInt32 flags, const Rect& bounds)
    {
        auto plugin = MakePlugin();
        plugin->SetDisplayRect(natural);
        plugin->SetDisplayFlags(flags);
        Rect result{};
        plugin->GetDisplayRect(bounds, result);
        return result;
    }
};

// Opening -------------------------------------------------------------------------------------

TEST_F(MoviePlayback, OpensTheSpoolFileThroughItsOwnDataHandler)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    EXPECT_EQ(plugin->OpenMovie(true, false), noErr);
    EXPECT_EQ(probe.Calls({"NewMovieFromDataRef"}), Calls{"NewMovieFromDataRef 0 no-id KWOB"});
    EXPECT_EQ(std::memcmp(&Movies().openedFile, &plugin->spoolFileSpec, sizeof(FSSpec)), 0);
    EXPECT_EQ(plugin->movie, ScriptedMovies::TheMovie());
}

TEST_F(MoviePlayback, OpensAsynchronouslyWhileDataArrive)
{
    auto plugin = MakePlugin();
    EXPECT_EQ(plugin->OpenMovie(false, true), noErr);
    EXPECT_EQ(probe.Calls({"NewMovieFromDataRef"}), Calls{"NewMovieFromDataRef 1280 no-id KWOB"});
}

TEST_F(MoviePlayback, OpensInTheMoviesPortAndPutsTheFormerOneBack)
{
    const Rect bounds{0, 0, 10, 10};
    CGrafPtr other = nullptr;
    ASSERT_EQ(CreateWindowPort(&bounds, &other), noErr);
    auto plugin = MakePlugin();
    plugin->moviePort = other;
    for (const OSErr err : {noErr, noMovieFound}) {
        Movies().openResult = err;
        EXPECT_EQ(plugin->OpenMovie(true, true), err);
        EXPECT_EQ(Movies().portAtOpen, other);
        CGrafPtr current = nullptr;
        GetPort(&current);
        EXPECT_EQ(current, port);
    }
    DisposeWindowPort(other);
}

TEST_F(MoviePlayback, DisposesOfTheAliasBeforeItPutsThePortBack)
{
    auto plugin = MakePlugin();
    probe.Forget();
    plugin->OpenMovie(true, true);
    EXPECT_EQ(probe.Calls({"GetPort", "SetPort", "NewAliasMinimal", "NewMovieFromDataRef",
                           "DisposeHandle"}),
              (Calls{"GetPort", "SetPort", "NewAliasMinimal", "GetPort",
                     "NewMovieFromDataRef 1280 no-id KWOB", "DisposeHandle", "SetPort"}));
}

TEST_F(MoviePlayback, ReturnsWhatMakingTheAliasFailsWith)
{
    auto plugin = MakePlugin();
    probe.Fail("NewAliasMinimal", memFullErr);
    EXPECT_EQ(plugin->OpenMovie(true, true), memFullErr);
    EXPECT_EQ(probe.Count("NewMovieFromDataRef"), 0);
    EXPECT_EQ(plugin->movie, nullptr);
    CGrafPtr current = nullptr;
    GetPort(&current);
    EXPECT_EQ(current, port);
}

TEST_F(MoviePlayback, ReturnsWhatOpeningFailsWithAndStaysWithoutAMovie)
{
    auto plugin = MakePlugin();
    Movies().openResult = cantOpenHandler;
    EXPECT_EQ(plugin->OpenMovie(true, true), cantOpenHandler);
    EXPECT_EQ(plugin->movie, nullptr);
}

TEST_F(MoviePlayback, DisposesOfTheAliasWhenOpeningThrows)
{
    auto plugin = MakePlugin();
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    Movies().onCall = [](const std::string&) { throw OSErr{ioErr}; };
    EXPECT_EQ(ThrownBy([&] { plugin->OpenMovie(true, true); }), ioErr);
    Movies().onCall = nullptr;
    EXPECT_EQ(CountLiveObjects(kLiveHandles), handles);
}

// Length --------------------------------------------------------------------------------------

TEST_F(MoviePlayback, CutsTheMovieFromItsLoadedEndForItsWholeDuration)
{
    auto plugin = MakeOpenedPlugin();
    Movies().duration = 9000;
    Movies().maxLoadedTime = 3000;
    plugin->AdjustMovieLength();
    EXPECT_EQ(
        probe.Calls({"GetMovieDuration", "GetMaxLoadedTimeInMovie", "DeleteMovieSegment",
                     "MCMovieChanged"}),
        (Calls{"GetMovieDuration", "GetMaxLoadedTimeInMovie", "DeleteMovieSegment 3000 9000"}));
}

TEST_F(MoviePlayback, TellsTheControllerOfTheCut)
{
    auto plugin = MakePlayingPlugin();
    plugin->AdjustMovieLength();
    EXPECT_EQ(probe.Calls({"DeleteMovieSegment", "MCMovieChanged"}),
              (Calls{"DeleteMovieSegment 0 0", "MCMovieChanged"}));
}

TEST_F(MoviePlayback, CutsNothingWithoutAMovie)
{
    auto plugin = MakePlugin();
    plugin->AdjustMovieLength();
    EXPECT_EQ(probe.Count("GetMovieDuration"), 0);
}

// Idle ----------------------------------------------------------------------------------------

TEST_F(MoviePlayback, IdlesWithoutAMovieByTakingThePort)
{
    auto plugin = MakePlugin();
    plugin->Idle(area, 0);
    EXPECT_EQ(plugin->moviePort, port);
    EXPECT_EQ(probe.Calls(kIdleCalls), Calls{});
}

TEST_F(MoviePlayback, BuildsTheControllerOnceTheMovieIsPlayable)
{
    auto plugin = MakeOpenedPlugin();
    Movies().controllerBounds = {5, 6, 121, 206};
    plugin->Idle(area, 0);
    EXPECT_EQ(
        probe.Calls(kIdleCalls),
        (Calls{"GetMovieLoadState", "GetGWorld", "SetMovieGWorld", "GetMovieBox",
               "NewMovieController 5,6,105,206 3", "MCGetVisible", "MCGetControllerBoundsRect",
               "SetMovieActive 1", "MCSetClip no-movie-clip", "MCDoAction 77"}));
    EXPECT_EQ(Movies().movieWorldPort, port);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,117,200"});
    EXPECT_TRUE(plugin->GetHaveDimensions());
}

TEST_F(MoviePlayback, ReportsTheSizeBeforeTheMovieBecomesActive)
{
    auto plugin = MakeOpenedPlugin();
    size_t toldByThen = 0;
    Movies().onCall = [&](const std::string& call) {
        if (call == "SetMovieActive 1") {
            toldByThen = host.told.size();
        }
    };
    plugin->Idle(area, 0);
    EXPECT_EQ(toldByThen, 1u);
}

TEST_F(MoviePlayback, TakesTheMovieBoxForTheSizeOfAHiddenController)
{
    auto plugin = MakeOpenedPlugin();
    Movies().controllerVisible = 0;
    plugin->Idle(area, 0);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,101,200"});
}

TEST_F(MoviePlayback, GivesASoundTheSizeOfItsController)
{
    auto plugin = MakeOpenedPlugin();
    Movies().movieBox = {0, 0, 0, 0};
    Movies().controllerBounds = {0, 0, 16, 160};
    plugin->Idle(area, 0);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,17,160"});
}

TEST_F(MoviePlayback, BuildsOneControllerOnly)
{
    auto plugin = MakeOpenedPlugin();
    plugin->Idle(area, 0);
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Count("NewMovieController"), 1);
    EXPECT_EQ(probe.Count("SetMovieActive"), 1);
    EXPECT_EQ(host.told.size(), 1u);
}

TEST_F(MoviePlayback, GoesOnWithoutAControllerThatCannotBeMade)
{
    auto plugin = MakeOpenedPlugin();
    Movies().makesController = false;
    plugin->Idle(area, 0);
    EXPECT_EQ(plugin->movieController, nullptr);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,101,200"});
    EXPECT_EQ(probe.Calls({"MCGetVisible", "MCSetClip", "MCDoAction"}), Calls{});
}

TEST_F(MoviePlayback, IsNotPlayableBelow10000)
{
    auto plugin = MakeOpenedPlugin();
    for (const SInt32 state : {0, 1000, 2000, 9999}) {
        Movies().loadState = state;
        plugin->Idle(area, 0);
        EXPECT_EQ(plugin->movieController, nullptr) << state;
    }
    Movies().loadState = 10000;
    plugin->Idle(area, 0);
    EXPECT_NE(plugin->movieController, nullptr);
}

TEST_F(MoviePlayback, DoesNotAskForTheStatusOfAMovieThatIsWell)
{
    auto plugin = MakeOpenedPlugin();
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Count("GetMovieStatus"), 0);
}

TEST_F(MoviePlayback, ThrowsTheStatusOfAMovieInError)
{
    auto plugin = MakePlayingPlugin();
    Movies().loadState = kMovieLoadStateError;
    Movies().movieStatus = noMovieFound;
    EXPECT_EQ(ThrownBy([&] { plugin->Idle(area, 0); }), noMovieFound);
    EXPECT_EQ(probe.Calls(kIdleCalls), (Calls{"GetMovieLoadState", "GetMovieStatus no-track"}));
    EXPECT_EQ(plugin->movie, ScriptedMovies::TheMovie());
    Movies().loadState = kMovieLoadStatePlayable;
    EXPECT_NO_THROW(plugin->Idle(area, 0));
    EXPECT_EQ(probe.Count("MCDoAction"), 1);
}

TEST_F(MoviePlayback, AnErrorStateWithoutAStatusIsJustNotPlayable)
{
    auto plugin = MakeOpenedPlugin();
    Movies().loadState = kMovieLoadStateError;
    EXPECT_NO_THROW(plugin->Idle(area, 0));
    EXPECT_EQ(plugin->movieController, nullptr);
}

TEST_F(MoviePlayback, BeforeVersion41WaitsForAllData)
{
    SetGestaltValue(gestaltQuickTime, kVersion40);
    auto plugin = MakeOpenedPlugin();
    plugin->Idle(area, 0);
    EXPECT_EQ(plugin->movieController, nullptr);
    plugin->allDataSpooled = true;
    plugin->Idle(area, 0);
    EXPECT_NE(plugin->movieController, nullptr);
    EXPECT_EQ(probe.Count("GetMovieLoadState"), 0);
}

TEST_F(MoviePlayback, TellsTheControllerOfGrowthWhileDataArriveThenIdlesIt)
{
    auto plugin = MakePlayingPlugin();
    plugin->Idle(area, 0);
    plugin->allDataSpooled = true;
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Calls({"MCDoAction"}), (Calls{"MCDoAction 77", "MCDoAction 1"}));
    EXPECT_EQ(Movies().actionParameter, nullptr);
}

TEST_F(MoviePlayback, ClipsTheControllerToThePort)
{
    auto plugin = MakePlayingPlugin();
    const Rect clip{1, 2, 30, 40};
    const RgnHandle region = NewRgn();
    RectRgn(region, &clip);
    SetClip(region);
    DisposeRgn(region);
    plugin->Idle(area, 0);
    EXPECT_TRUE(Movies().clipRect == clip);
}

TEST_F(MoviePlayback, GoesOnUnclippedWithoutARegion)
{
    auto plugin = MakePlayingPlugin();
    probe.Fail("NewRgn", memFullErr);
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Calls({"MCSetClip", "MCDoAction"}), Calls{"MCDoAction 77"});
}

// Display -------------------------------------------------------------------------------------

TEST_F(MoviePlayback, DisplaysNothingWithoutAMovieOrController)
{
    auto plugin = MakePlugin();
    plugin->Display(area, 0);
    EXPECT_EQ(plugin->moviePort, port);
    plugin->OpenMovie(true, true);
    probe.Forget();
    plugin->Display(area, 0);
    EXPECT_EQ(probe.Calls(kDisplayCalls), Calls{"GetPort"});
}

TEST_F(MoviePlayback, DisplaysInItsOrder)
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

TEST_F(MoviePlayback, LeavesAControllerAloneThatIsInItsPlace)
{
    auto plugin = MakePlayingPlugin();
    Movies().controllerBounds = {10, 20, 110, 220};
    plugin->SetDisplayRect({0, 0, 101, 200});
    plugin->Display(area, 0);
    EXPECT_EQ(probe.Count("MCSetControllerBoundsRect"), 0);
    EXPECT_EQ(probe.Count("MCDoAction"), 1);
}

TEST_F(MoviePlayback, DoesNotMoveAHiddenController)
{
    auto plugin = MakePlayingPlugin();
    Movies().controllerVisible = 0;
    plugin->Display(area, 0);
    EXPECT_EQ(probe.Calls({"MCGetControllerBoundsRect", "MCSetControllerBoundsRect"}), Calls{});
    EXPECT_EQ(probe.Count("MCDoAction"), 1);
}

TEST_F(MoviePlayback, WhatIdleAddsToTheHeightDisplayTakesOffAgain)
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

TEST_F(MoviePlayback, DropsTheErrorOfDrawing)
{
    auto plugin = MakePlayingPlugin();
    Movies().moviesError = invalidMovie;
    EXPECT_NO_THROW(plugin->Display(area, 0));
    EXPECT_EQ(Movies().moviesError, noErr); // asked for, and so forgotten
}

TEST_F(MoviePlayback, KnowsThatItDraws)
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

TEST_F(MoviePlayback, KnowsThatDrawingIsOverWhenItThrows)
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

TEST_F(MoviePlayback, TakesNoClickWithoutAController)
{
    auto plugin = MakeOpenedPlugin();
    Movies().isPlayerEvent = 1;
    EXPECT_FALSE(plugin->HandleClick(area, {}));
    EXPECT_EQ(probe.Count("MCIsPlayerEvent"), 0);
}

TEST_F(MoviePlayback, TakesAClickThatTheControllerTakes)
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

TEST_F(MoviePlayback, KnowsThatItHandlesAClick)
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

// Placing -------------------------------------------------------------------------------------

TEST_F(MoviePlayback, WithoutFlagsStandsAtTheTopLeft)
{
    EXPECT_TRUE(DisplayRect({0, 0, 101, 200}, 0, {10, 20, 500, 600}) == (Rect{10, 20, 111, 220}));
    EXPECT_TRUE(DisplayRect({3, 4, 104, 204}, 0, {10, 20, 50, 60}) == (Rect{10, 20, 111, 220}));
}

TEST_F(MoviePlayback, FillsTheAreaWhenScaledWithoutAspect)
{
    EXPECT_TRUE(DisplayRect({0, 0, 101, 200}, 0x01, {10, 20, 500, 600}) ==
                (Rect{10, 20, 500, 600}));
}

TEST_F(MoviePlayback, FitsIntoTheAreaWithAspect)
{
    EXPECT_TRUE(DisplayRect({0, 0, 100, 200}, 0x05, {10, 20, 110, 120}) == (Rect{10, 20, 60, 120}));
    EXPECT_TRUE(DisplayRect({0, 0, 50, 50}, 0x05, {0, 0, 100, 100}) == (Rect{0, 0, 100, 100}));
}

TEST_F(MoviePlayback, NeverGrowsWhenShrinkOnly)
{
    EXPECT_TRUE(DisplayRect({0, 0, 50, 50}, 0x07, {0, 0, 100, 100}) == (Rect{0, 0, 50, 50}));
    EXPECT_TRUE(DisplayRect({0, 0, 100, 200}, 0x07, {0, 0, 100, 100}) == (Rect{0, 0, 50, 100}));
}

TEST_F(MoviePlayback, CentresWithTheOddPixelAtLeftAndTop)
{
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x18, {0, 0, 11, 11}) == (Rect{4, 4, 8, 8}));
    EXPECT_TRUE(DisplayRect({0, 0, 14, 14}, 0x18, {0, 0, 11, 11}) == (Rect{-2, -2, 12, 12}));
}

TEST_F(MoviePlayback, AlignsRightAndBottomUnlessCentred)
{
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x60, {0, 0, 11, 11}) == (Rect{7, 7, 11, 11}));
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x78, {0, 0, 11, 11}) == (Rect{4, 4, 8, 8}));
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x20, {0, 0, 11, 11}) == (Rect{0, 7, 4, 11}));
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x40, {0, 0, 11, 11}) == (Rect{7, 0, 11, 4}));
}

// Data and drags ------------------------------------------------------------------------------

TEST_F(MoviePlayback, HandsOutNoData)
{
    auto plugin = MakePlugin();
    UInt32 type = 77;
    char block = 0;
    Ptr master = &block;
    Handle handle = &master;
    plugin->GetData(type, &handle);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(type, 77u);
}

TEST_F(MoviePlayback, HandsOutNoDataToNowhere)
{
    auto plugin = MakePlugin();
    UInt32 type = 77;
    plugin->GetData(type, nullptr);
    EXPECT_EQ(type, 77u);
}

TEST_F(MoviePlayback, RefusesDrags)
{
    auto plugin = MakePlugin();
    unsigned char allowed = 1;
    plugin->PrepareDrag(nullptr, 0, area, allowed);
    EXPECT_EQ(allowed, 0);
    plugin->CleanupDrag();
}

} // namespace
} // namespace test

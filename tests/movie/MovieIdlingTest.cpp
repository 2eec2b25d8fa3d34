// SPDX-License-Identifier: MIT
#include "tests/movie/PlaybackTest.h"
#include "toolbox/gestalt/Gestalt.h"

namespace test
{
namespace
{

const Calls kIdleCalls = {
    "GetMovieLoadState", "GetMovieStatus",     "GetGWorld",    "SetMovieGWorld",
    "GetMovieBox",       "NewMovieController", "MCGetVisible", "MCGetControllerBoundsRect",
    "SetMovieActive",    "MCSetClip",          "MCDoAction"};
bool operator==(const Rect& a, const Rect& b)
{
    return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}

class MovieIdling : public PlaybackTest
{
};

TEST_F(MovieIdling, IdlesWithoutAMovieByTakingThePort)
{
    auto plugin = MakePlugin();
    plugin->Idle(area, 0);
    EXPECT_EQ(plugin->moviePort, port);
    EXPECT_EQ(probe.Calls(kIdleCalls), Calls{});
}

TEST_F(MovieIdling, BuildsTheControllerOnceTheMovieIsPlayable)
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

TEST_F(MovieIdling, HasTheMovieDrawOnThePortsOwnDevice)
{
    auto plugin = MakeOpenedPlugin();
    GDeviceRecord* master = nullptr;
    SetGWorld(port, &master);
    plugin->Idle(area, 0);
    SetGWorld(port, nullptr);
    EXPECT_EQ(Movies().movieWorldPort, port);
    EXPECT_EQ(Movies().movieWorldDevice, &master);
}

TEST_F(MovieIdling, ReportsTheSizeBeforeTheMovieBecomesActive)
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

TEST_F(MovieIdling, TakesTheMovieBoxForTheSizeOfAHiddenController)
{
    auto plugin = MakeOpenedPlugin();
    Movies().controllerVisible = 0;
    plugin->Idle(area, 0);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,101,200"});
}

TEST_F(MovieIdling, GivesASoundTheSizeOfItsController)
{
    auto plugin = MakeOpenedPlugin();
    Movies().movieBox = {0, 0, 0, 0};
    Movies().controllerBounds = {0, 0, 16, 160};
    plugin->Idle(area, 0);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,17,160"});
}

TEST_F(MovieIdling, BuildsOneControllerOnly)
{
    auto plugin = MakeOpenedPlugin();
    plugin->Idle(area, 0);
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Count("NewMovieController"), 1);
    EXPECT_EQ(probe.Count("SetMovieActive"), 1);
    EXPECT_EQ(host.told.size(), 1u);
}

TEST_F(MovieIdling, GoesOnWithoutAControllerThatCannotBeMade)
{
    auto plugin = MakeOpenedPlugin();
    Movies().makesController = false;
    plugin->Idle(area, 0);
    EXPECT_EQ(plugin->movieController, nullptr);
    EXPECT_EQ(host.told, Calls{"gotRect 0,0,101,200"});
    EXPECT_EQ(probe.Calls({"MCGetVisible", "MCSetClip", "MCDoAction"}), Calls{});
}

TEST_F(MovieIdling, IsNotPlayableBelow10000)
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

TEST_F(MovieIdling, DoesNotAskForTheStatusOfAMovieThatIsWell)
{
    auto plugin = MakeOpenedPlugin();
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Count("GetMovieStatus"), 0);
}

TEST_F(MovieIdling, ThrowsTheStatusOfAMovieInError)
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

TEST_F(MovieIdling, AnErrorStateWithoutAStatusIsJustNotPlayable)
{
    auto plugin = MakeOpenedPlugin();
    Movies().loadState = kMovieLoadStateError;
    EXPECT_NO_THROW(plugin->Idle(area, 0));
    EXPECT_EQ(plugin->movieController, nullptr);
}

TEST_F(MovieIdling, BeforeVersion41WaitsForAllData)
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

TEST_F(MovieIdling, TellsTheControllerOfGrowthWhileDataArriveThenIdlesIt)
{
    auto plugin = MakePlayingPlugin();
    plugin->Idle(area, 0);
    plugin->allDataSpooled = true;
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Calls({"MCDoAction"}), (Calls{"MCDoAction 77", "MCDoAction 1"}));
    EXPECT_EQ(Movies().actionParameter, nullptr);
}

TEST_F(MovieIdling, IsNoControllerCallInWhichNobodyMayWait)
{
    auto plugin = MakePlayingPlugin();
    bool raised = false;
    Movies().onCall = [&](const std::string&) { raised = raised || plugin->inControllerCall; };
    plugin->Idle(area, 0);
    Movies().onCall = nullptr;
    EXPECT_EQ(probe.Count("MCDoAction"), 1);
    EXPECT_FALSE(raised);
}

// A kind of movie that places itself.
class SelfPlacedMovie : public VornMoviePlugin
{
public:
    using VornMoviePlugin::VornMoviePlugin;
    void GetDisplayRect(const Rect&, Rect& outRect) override { outRect = {1, 2, 31, 42}; }
    void SetDisplayRect(const Rect& rect) override { reported.push_back(rect); }

    std::vector<Rect> reported;
};

TEST_F(MovieIdling, ReportsTheSizeToTheKindOfMovieItIs)
{
    SelfPlacedMovie plugin(bundle.Get());
    plugin.moviePort = port;
    ASSERT_EQ(plugin.OpenMovie(true, true), noErr);
    Movies().controllerBounds = {5, 6, 121, 206};
    plugin.Idle(area, 0);
    ASSERT_EQ(plugin.reported.size(), 1u);
    EXPECT_TRUE(plugin.reported[0] == (Rect{0, 0, 117, 200}));
}

TEST_F(MovieIdling, IsDisplayedWhereTheKindOfMovieItIsSays)
{
    SelfPlacedMovie plugin(bundle.Get());
    plugin.moviePort = port;
    ASSERT_EQ(plugin.OpenMovie(true, true), noErr);
    plugin.Idle(area, 0);
    plugin.Display(area, 0);
    EXPECT_EQ(probe.Calls({"MCSetControllerBoundsRect"}),
              Calls{"MCSetControllerBoundsRect 1,2,30,42"});
}

TEST_F(MovieIdling, MakesNoControllerWithoutAMovie)
{
    auto plugin = MakePlugin();
    plugin->SetupMovieController();
    EXPECT_EQ(plugin->movieController, nullptr);
    EXPECT_EQ(probe.Calls(kIdleCalls), Calls{});
}

TEST_F(MovieIdling, ClipsTheControllerToThePort)
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

TEST_F(MovieIdling, GoesOnUnclippedWithoutARegion)
{
    auto plugin = MakePlayingPlugin();
    probe.Fail("NewRgn", memFullErr);
    plugin->Idle(area, 0);
    EXPECT_EQ(probe.Calls({"MCSetClip", "MCDoAction"}), Calls{"MCDoAction 77"});
}

} // namespace
} // namespace test

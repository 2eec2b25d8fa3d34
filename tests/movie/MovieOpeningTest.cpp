// SPDX-License-Identifier: MIT
#include "tests/movie/PlaybackTest.h"

#include <cstring>

namespace test
{
namespace
{

class MovieOpening : public PlaybackTest
{
};

TEST_F(MovieOpening, OpensTheSpoolFileThroughItsOwnDataHandler)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    EXPECT_EQ(plugin->OpenMovie(true, false), noErr);
    EXPECT_EQ(probe.Calls({"NewMovieFromDataRef"}), Calls{"NewMovieFromDataRef 0 no-id KWOB"});
    EXPECT_EQ(std::memcmp(&Movies().openedFile, &plugin->spoolFileSpec, sizeof(FSSpec)), 0);
    EXPECT_EQ(plugin->movie, ScriptedMovies::TheMovie());
}

TEST_F(MovieOpening, OpensAsynchronouslyWhileDataArrive)
{
    auto plugin = MakePlugin();
    EXPECT_EQ(plugin->OpenMovie(false, true), noErr);
    EXPECT_EQ(probe.Calls({"NewMovieFromDataRef"}), Calls{"NewMovieFromDataRef 1280 no-id KWOB"});
}

TEST_F(MovieOpening, OpensInTheMoviesPortAndPutsTheFormerOneBack)
{
    const Rect bounds{0, 0, 10, 10};
    CGrafPtr other = nullptr;
    ASSERT_EQ(CreateWindowPort(&bounds, &other), noErr);
    auto plugin = MakePlugin();
    plugin->moviePort = other;
    for (const OSErr err : {OSErr{noErr}, OSErr{noMovieFound}}) {
        Movies().openResult = err;
        EXPECT_EQ(plugin->OpenMovie(true, true), err);
        EXPECT_EQ(Movies().portAtOpen, other);
        CGrafPtr current = nullptr;
        GetPort(&current);
        EXPECT_EQ(current, port);
    }
    DisposeWindowPort(other);
}

TEST_F(MovieOpening, DisposesOfTheAliasBeforeItPutsThePortBack)
{
    auto plugin = MakePlugin();
    probe.Forget();
    plugin->OpenMovie(true, true);
    EXPECT_EQ(probe.Calls({"GetPort", "SetPort", "NewAliasMinimal", "NewMovieFromDataRef",
                           "DisposeHandle"}),
              (Calls{"GetPort", "SetPort", "NewAliasMinimal", "GetPort",
                     "NewMovieFromDataRef 1280 no-id KWOB", "DisposeHandle", "SetPort"}));
}

TEST_F(MovieOpening, ReturnsWhatMakingTheAliasFailsWith)
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

TEST_F(MovieOpening, ReturnsWhatOpeningFailsWithAndStaysWithoutAMovie)
{
    auto plugin = MakePlugin();
    Movies().openResult = cantOpenHandler;
    EXPECT_EQ(plugin->OpenMovie(true, true), cantOpenHandler);
    EXPECT_EQ(plugin->movie, nullptr);
}

TEST_F(MovieOpening, DisposesOfTheAliasWhenOpeningThrows)
{
    auto plugin = MakePlugin();
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    Movies().onCall = [](const std::string&) { throw OSErr{ioErr}; };
    EXPECT_EQ(ThrownBy([&] { plugin->OpenMovie(true, true); }), ioErr);
    Movies().onCall = nullptr;
    EXPECT_EQ(CountLiveObjects(kLiveHandles), handles);
}

// Length --------------------------------------------------------------------------------------

TEST_F(MovieOpening, CutsTheMovieFromItsLoadedEndForItsWholeDuration)
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

TEST_F(MovieOpening, TellsTheControllerOfTheCut)
{
    auto plugin = MakePlayingPlugin();
    plugin->AdjustMovieLength();
    EXPECT_EQ(probe.Calls({"DeleteMovieSegment", "MCMovieChanged"}),
              (Calls{"DeleteMovieSegment 0 0", "MCMovieChanged"}));
}

TEST_F(MovieOpening, CutsNothingWithoutAMovie)
{
    auto plugin = MakePlugin();
    plugin->AdjustMovieLength();
    EXPECT_EQ(probe.Count("GetMovieDuration"), 0);
}

} // namespace
} // namespace test

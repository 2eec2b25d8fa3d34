// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedMovies.h"

#include "tests/support/ToolboxProbe.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

struct MovieRecord {
};
struct MovieControllerRecord {
};

namespace test
{
namespace
{

ScriptedMovies gMovies;
MovieRecord gMovie;
MovieControllerRecord gController;

std::string Text(const Rect& rect)
{
    std::ostringstream text;
    text << rect.top << ',' << rect.left << ',' << rect.bottom << ',' << rect.right;
    return text.str();
}

void Keep(const std::string& call)
{
    if (ToolboxProbe::Current() != nullptr) {
        ToolboxProbe::Current()->Note(call);
    }
    if (gMovies.onCall) {
        gMovies.onCall(call);
    }
}

// There is one of each, and calls are about nothing else.
void MustBe(Movie movie)
{
    EXPECT_EQ(movie, &gMovie);
}

void MustBe(MovieController controller)
{
    EXPECT_EQ(controller, &gController);
}

template <typename... Arguments>
void Called(const char* name, const Arguments&... arguments)
{
    std::ostringstream call;
    call << name;
    ((call << ' ' << arguments), ...);
    Keep(call.str());
}

} // namespace

Movie ScriptedMovies::TheMovie()
{
    return &gMovie;
}

MovieController ScriptedMovies::TheController()
{
    return &gController;
}

ScriptedMovies& Movies()
{
    return gMovies;
}

void ResetMovies()
{
    gMovies = ScriptedMovies{};
}

} // namespace test

using test::Called;
using test::gMovies;
using test::MustBe;

Boolean QuickTimePresent(void)
{
    Called("QuickTimePresent");
    return gMovies.present;
}

OSErr EnterMovies(void)
{
    Called("EnterMovies");
    return gMovies.enterMoviesResult;
}

OSErr NewMovieFromDataRef(Movie* movie, SInt16 flags, SInt16* id, Handle dataRef,
                          OSType dataRefType)
{
    std::memcpy(&gMovies.openedFile, *dataRef, sizeof gMovies.openedFile);
    GetPort(&gMovies.portAtOpen);
    Called("NewMovieFromDataRef", flags, id == nullptr ? "no-id" : "id",
           dataRefType == FOUR_CHARS('K', 'W', 'O', 'B') ? "KWOB" : "?");
    if (gMovies.openResult == 0) {
        *movie = &test::gMovie;
        ++gMovies.moviesAlive;
    }
    return gMovies.openResult;
}

void DisposeMovie(Movie movie)
{
    MustBe(movie);
    Called("DisposeMovie");
    --gMovies.moviesAlive;
}

void StopMovie(Movie movie)
{
    MustBe(movie);
    Called("StopMovie");
}

void MoviesTask(Movie movie, SInt32 maxMilliseconds)
{
    MustBe(movie);
    GetPort(&gMovies.portAtTask);
    Called("MoviesTask", maxMilliseconds);
}

OSErr GetMoviesError(void)
{
    Called("GetMoviesError");
    const OSErr err = gMovies.moviesError;
    gMovies.moviesError = 0;
    return err;
}

void GetMovieBox(Movie movie, Rect* box)
{
    MustBe(movie);
    Called("GetMovieBox");
    *box = gMovies.movieBox;
}

SInt32 GetMovieLoadState(Movie movie)
{
    MustBe(movie);
    Called("GetMovieLoadState");
    return gMovies.loadState;
}

OSErr GetMovieStatus(Movie movie, void** track)
{
    MustBe(movie);
    Called("GetMovieStatus", track == nullptr ? "no-track" : "track");
    return gMovies.movieStatus;
}

TimeValue GetMovieDuration(Movie movie)
{
    MustBe(movie);
    Called("GetMovieDuration");
    return gMovies.duration;
}

OSErr GetMaxLoadedTimeInMovie(Movie movie, TimeValue* time)
{
    MustBe(movie);
    Called("GetMaxLoadedTimeInMovie");
    *time = gMovies.maxLoadedTime;
    return 0;
}

OSErr DeleteMovieSegment(Movie movie, TimeValue start, TimeValue duration)
{
    MustBe(movie);
    Called("DeleteMovieSegment", start, duration);
    return 0;
}

void SetMovieGWorld(Movie movie, CGrafPtr port, GDHandle device)
{
    MustBe(movie);
    Called("SetMovieGWorld");
    gMovies.movieWorldPort = port;
    gMovies.movieWorldDevice = device;
}

void SetMovieActive(Movie movie, Boolean active)
{
    MustBe(movie);
    Called("SetMovieActive", int{active});
}

MovieController NewMovieController(Movie movie, const Rect* box, SInt32 flags)
{
    MustBe(movie);
    Called("NewMovieController", test::Text(*box), flags);
    gMovies.controllersAlive += gMovies.makesController;
    return gMovies.makesController ? &test::gController : nullptr;
}

void DisposeMovieController(MovieController controller)
{
    MustBe(controller);
    Called("DisposeMovieController");
    --gMovies.controllersAlive;
}

SInt32 MCDoAction(MovieController controller, MCAction action, void* parameter)
{
    MustBe(controller);
    gMovies.actionParameter = parameter;
    Called("MCDoAction", action);
    return 0;
}

SInt32 MCGetVisible(MovieController controller)
{
    MustBe(controller);
    Called("MCGetVisible");
    return gMovies.controllerVisible;
}

SInt32 MCGetControllerBoundsRect(MovieController controller, Rect* bounds)
{
    MustBe(controller);
    Called("MCGetControllerBoundsRect");
    *bounds = gMovies.controllerBounds;
    return 0;
}

SInt32 MCSetControllerBoundsRect(MovieController controller, const Rect* bounds)
{
    MustBe(controller);
    Called("MCSetControllerBoundsRect", test::Text(*bounds));
    gMovies.controllerBounds = *bounds;
    return 0;
}

SInt32 MCSetClip(MovieController controller, RgnHandle clip, RgnHandle movieClip)
{
    MustBe(controller);
    gMovies.clipRect = GetRegionRect(clip, 0);
    Called("MCSetClip", movieClip == nullptr ? "no-movie-clip" : "movie-clip");
    return 0;
}

SInt32 MCMovieChanged(MovieController controller, Movie movie)
{
    MustBe(controller);
    MustBe(movie);
    Called("MCMovieChanged");
    return 0;
}

SInt32 MCIsPlayerEvent(MovieController controller, const EventRecord* event)
{
    MustBe(controller);
    Called("MCIsPlayerEvent", event->what);
    return gMovies.isPlayerEvent;
}

// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedMovies.h"

#include "tests/support/ToolboxProbe.h"

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

void DisposeMovie(Movie)
{
    Called("DisposeMovie");
    --gMovies.moviesAlive;
}

void StopMovie(Movie)
{
    Called("StopMovie");
}

void MoviesTask(Movie, SInt32 maxMilliseconds)
{
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

void GetMovieBox(Movie, Rect* box)
{
    Called("GetMovieBox");
    *box = gMovies.movieBox;
}

SInt32 GetMovieLoadState(Movie)
{
    Called("GetMovieLoadState");
    return gMovies.loadState;
}

OSErr GetMovieStatus(Movie, void** track)
{
    Called("GetMovieStatus", track == nullptr ? "no-track" : "track");
    return gMovies.movieStatus;
}

TimeValue GetMovieDuration(Movie)
{
    Called("GetMovieDuration");
    return gMovies.duration;
}

OSErr GetMaxLoadedTimeInMovie(Movie, TimeValue* time)
{
    Called("GetMaxLoadedTimeInMovie");
    *time = gMovies.maxLoadedTime;
    return 0;
}

OSErr DeleteMovieSegment(Movie, TimeValue start, TimeValue duration)
{
    Called("DeleteMovieSegment", start, duration);
    return 0;
}

void SetMovieGWorld(Movie, CGrafPtr port, GDHandle)
{
    Called("SetMovieGWorld");
    gMovies.movieWorldPort = port;
}

void SetMovieActive(Movie, Boolean active)
{
    Called("SetMovieActive", int{active});
}

MovieController NewMovieController(Movie, const Rect* box, SInt32 flags)
{
    Called("NewMovieController", test::Text(*box), flags);
    gMovies.controllersAlive += gMovies.makesController;
    return gMovies.makesController ? &test::gController : nullptr;
}

void DisposeMovieController(MovieController)
{
    Called("DisposeMovieController");
    --gMovies.controllersAlive;
}

SInt32 MCDoAction(MovieController, MCAction action, void* parameter)
{
    gMovies.actionParameter = parameter;
    Called("MCDoAction", action);
    return 0;
}

SInt32 MCGetVisible(MovieController)
{
    Called("MCGetVisible");
    return gMovies.controllerVisible;
}

SInt32 MCGetControllerBoundsRect(MovieController, Rect* bounds)
{
    Called("MCGetControllerBoundsRect");
    *bounds = gMovies.controllerBounds;
    return 0;
}

SInt32 MCSetControllerBoundsRect(MovieController, const Rect* bounds)
{
    Called("MCSetControllerBoundsRect", test::Text(*bounds));
    gMovies.controllerBounds = *bounds;
    return 0;
}

SInt32 MCSetClip(MovieController, RgnHandle clip, RgnHandle movieClip)
{
    gMovies.clipRect = GetRegionRect(clip, 0);
    Called("MCSetClip", movieClip == nullptr ? "no-movie-clip" : "movie-clip");
    return 0;
}

SInt32 MCMovieChanged(MovieController, Movie)
{
    Called("MCMovieChanged");
    return 0;
}

SInt32 MCIsPlayerEvent(MovieController, const EventRecord* event)
{
    Called("MCIsPlayerEvent", event->what);
    return gMovies.isPlayerEvent;
}

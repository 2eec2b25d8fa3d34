// SPDX-License-Identifier: MIT
//
// QuickTime on a machine without the codec libraries: it is absent and says so, and nobody gets a
// movie or a controller. What takes one is there for the linker and does nothing.
#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quicktime/Movies.h"

using toolbox::Announce;

namespace
{

OSErr Refuse(const char* operation)
{
    const OSErr err = Announce(operation);
    return err != noErr ? err : OSErr{noMovieFound};
}

} // namespace

Boolean QuickTimePresent(void)
{
    Announce("QuickTimePresent");
    return 0;
}

OSErr EnterMovies(void)
{
    return Refuse("EnterMovies");
}

OSErr NewMovieFromDataRef(Movie* movie, SInt16, SInt16*, Handle, OSType)
{
    *movie = nullptr;
    return Refuse("NewMovieFromDataRef");
}

void DisposeMovie(Movie) {}
void StopMovie(Movie) {}
void MoviesTask(Movie, SInt32) {}

OSErr GetMoviesError(void)
{
    return Refuse("GetMoviesError");
}

void GetMovieBox(Movie, Rect* box)
{
    *box = {};
}

SInt32 GetMovieLoadState(Movie)
{
    return kMovieLoadStateError;
}

OSErr GetMovieStatus(Movie, void** track)
{
    if (track != nullptr) {
        *track = nullptr;
    }
    return Refuse("GetMovieStatus");
}

TimeValue GetMovieDuration(Movie)
{
    return 0;
}

OSErr GetMaxLoadedTimeInMovie(Movie, TimeValue* time)
{
    *time = 0;
    return Refuse("GetMaxLoadedTimeInMovie");
}

OSErr DeleteMovieSegment(Movie, TimeValue, TimeValue)
{
    return Refuse("DeleteMovieSegment");
}

void SetMovieGWorld(Movie, CGrafPtr, GDHandle) {}
void SetMovieActive(Movie, Boolean) {}

MovieController NewMovieController(Movie, const Rect*, SInt32)
{
    Refuse("NewMovieController");
    return nullptr;
}

void DisposeMovieController(MovieController) {}

SInt32 MCDoAction(MovieController, MCAction, void*)
{
    return Refuse("MCDoAction");
}

SInt32 MCGetVisible(MovieController)
{
    return 0;
}

SInt32 MCGetControllerBoundsRect(MovieController, Rect* bounds)
{
    *bounds = {};
    return Refuse("MCGetControllerBoundsRect");
}

SInt32 MCSetControllerBoundsRect(MovieController, const Rect*)
{
    return Refuse("MCSetControllerBoundsRect");
}

SInt32 MCSetClip(MovieController, RgnHandle, RgnHandle)
{
    return Refuse("MCSetClip");
}

SInt32 MCMovieChanged(MovieController, Movie)
{
    return Refuse("MCMovieChanged");
}

SInt32 MCIsPlayerEvent(MovieController, const EventRecord*)
{
    return 0;
}

void SetSoundSink(const ToolboxSoundSink*) {}

void GetMovieStatistics(void*, MovieStatistics* statistics)
{
    *statistics = {};
}

SInt64 NextToolboxDeadline(void)
{
    return -1;
}

SInt64 NextMovieDeadline(void*)
{
    return -1;
}

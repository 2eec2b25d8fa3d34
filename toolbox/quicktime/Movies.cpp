// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/Movies.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quicktime/Movie.h"
#include "toolbox/quicktime/MovieController.h"
#include "toolbox/quicktime/MovieList.h"
#include "toolbox/quicktime/SoundOutput.h"
#include "toolbox/threads/Threads.h"

#include <algorithm>
#include <list>
#include <new>
#include <utility>

using namespace toolbox;

namespace
{

OSErr gMoviesError = noErr;
ToolboxSoundSink gSoundSink{};

// Never destroyed: movies may be left when the process ends.
MovieList& LiveMovies()
{
    static auto& movies = *new MovieList;
    return movies;
}

OSErr Note(OSErr err)
{
    gMoviesError = err;
    return err;
}

// Movie times outside are 1/90000 second; the end of something rounds up, so that nothing of it
// is cut off.
TimeValue ToTimeValue(Nanoseconds time)
{
    const SInt64 units =
        av_rescale_rnd(std::max<SInt64>(0, time), kMovieTimeScale, kSecond, AV_ROUND_UP);
    return static_cast<TimeValue>(std::min<SInt64>(units, INT32_MAX));
}

template <class Movies>
SInt64 EarliestDeadline(const Movies& movies)
{
    SInt64 earliest = -1;
    for (const Movie movie : movies) {
        const SInt64 deadline = movie->NextDeadline();
        if (deadline >= 0 && (earliest < 0 || deadline < earliest)) {
            earliest = deadline;
        }
    }
    return earliest;
}

OSErr OpenMovieOn(Handle dataRef, OSType type, bool isAsynchronous,
                  std::unique_ptr<MovieRecord>* movie)
{
    std::unique_ptr<DataHandlerClient> handler;
    const OSErr err = DataHandlerClient::Open(dataRef, type, &handler);
    if (err != noErr) {
        return err;
    }
    auto opened = std::make_unique<MovieRecord>(std::move(handler), GetStatisticsOwner());
    if (!isAsynchronous) {
        opened->OpenCompletely();
        if (opened->Status() != noErr) {
            return opened->Status();
        }
    }
    *movie = std::move(opened);
    return noErr;
}

} // namespace

namespace toolbox
{
const ToolboxSoundSink& SoundSink()
{
    return gSoundSink;
}
} // namespace toolbox

Boolean QuickTimePresent(void)
{
    return Announce("QuickTimePresent") == noErr &&
           avcodec_find_decoder(AV_CODEC_ID_MPEG1VIDEO) != nullptr;
}

OSErr EnterMovies(void)
{
    if (const OSErr err = Announce("EnterMovies")) {
        return Note(err);
    }
    av_log_set_level(AV_LOG_QUIET); // what is wrong with the data is told by codes, not by lines
    return Note(noErr);
}

OSErr NewMovieFromDataRef(Movie* movie, SInt16 flags, SInt16*, Handle dataRef, OSType dataRefType)
{
    if (const OSErr err = Announce("NewMovieFromDataRef")) {
        *movie = nullptr;
        return Note(err);
    }
    std::unique_ptr<MovieRecord> opened;
    OSErr err = noErr;
    try {
        err = OpenMovieOn(dataRef, dataRefType, (flags & newMovieAsyncOK) != 0, &opened);
        if (opened) {
            LiveMovies().Add(opened.get(), opened->Owner());
        }
    } catch (const std::bad_alloc&) {
        opened.reset();
        err = memFullErr;
    }
    *movie = opened.release();
    return Note(err);
}

void DisposeMovie(Movie movie)
{
    Announce("DisposeMovie");
    LiveMovies().Remove(movie);
    delete movie;
}

void StopMovie(Movie movie)
{
    Announce("StopMovie");
    movie->Stop();
}

void MoviesTask(Movie movie, SInt32)
{
    if (Note(Announce("MoviesTask")) != noErr) {
        return;
    }
    const std::list<Movie> tasked = movie != nullptr ? std::list<Movie>{movie} : LiveMovies().All();
    for (const Movie each : tasked) {
        if (LiveMovies().Holds(each)) {
            each->Slice();
        }
    }
    for (const Movie each : tasked) {
        if (LiveMovies().Holds(each)) {
            each->TaskDataHandler();
        }
    }
}

OSErr GetMoviesError(void)
{
    Announce("GetMoviesError");
    return std::exchange(gMoviesError, noErr);
}

void GetMovieBox(Movie movie, Rect* box)
{
    Announce("GetMovieBox");
    *box = movie->NaturalBox();
}

SInt32 GetMovieLoadState(Movie movie)
{
    if (Note(Announce("GetMovieLoadState")) != noErr) {
        return kMovieLoadStateError;
    }
    movie->Slice();
    return movie->LoadState();
}

OSErr GetMovieStatus(Movie movie, void** track)
{
    if (track != nullptr) {
        *track = nullptr;
    }
    const OSErr err = Announce("GetMovieStatus");
    return err != noErr ? err : movie->Status();
}

TimeValue GetMovieDuration(Movie movie)
{
    return Note(Announce("GetMovieDuration")) != noErr ? 0 : ToTimeValue(movie->Duration());
}

OSErr GetMaxLoadedTimeInMovie(Movie movie, TimeValue* time)
{
    if (const OSErr err = Announce("GetMaxLoadedTimeInMovie")) {
        *time = 0;
        return Note(err);
    }
    movie->TakeInWhatIsThere();
    *time = ToTimeValue(movie->LoadedDuration());
    return Note(noErr);
}

OSErr DeleteMovieSegment(Movie movie, TimeValue start, TimeValue duration)
{
    if (const OSErr err = Announce("DeleteMovieSegment")) {
        return Note(err);
    }
    const SInt64 end = SInt64{start} + duration;
    if (start < 0 || duration < 0) {
        return Note(paramErr);
    }
    if (duration == 0) {
        return Note(noErr);
    }
    // Only what was announced can go: nothing that has arrived is ever cut out.
    if (start < ToTimeValue(movie->LoadedDuration()) || end < ToTimeValue(movie->Duration())) {
        return Note(paramErr);
    }
    movie->ForgetAnnounced();
    return Note(noErr);
}

void SetMovieGWorld(Movie movie, CGrafPtr port, GDHandle)
{
    if (Note(Announce("SetMovieGWorld")) == noErr) {
        movie->SetPort(port);
    }
}

void SetMovieActive(Movie movie, Boolean active)
{
    if (Note(Announce("SetMovieActive")) == noErr) {
        movie->SetActive(active != 0);
    }
}

MovieController NewMovieController(Movie movie, const Rect* box, SInt32)
{
    if (Note(Announce("NewMovieController")) != noErr) {
        return nullptr;
    }
    auto* const controller = new (std::nothrow) MovieControllerRecord(movie, *box);
    Note(controller != nullptr ? noErr : memFullErr);
    return controller;
}

void DisposeMovieController(MovieController controller)
{
    Announce("DisposeMovieController");
    delete controller;
}

SInt32 MCDoAction(MovieController controller, MCAction action, void*)
{
    if (const OSErr err = Announce("MCDoAction")) {
        return Note(err);
    }
    switch (action) {
    case mcActionDraw:
        controller->Draw();
        break;
    case mcActionIdle:
    case mcActionMovieChanged:
        controller->Idle();
        break;
    default:
        return Note(paramErr);
    }
    return Note(noErr);
}

SInt32 MCGetVisible(MovieController)
{
    return Announce("MCGetVisible") == noErr ? 1 : 0;
}

SInt32 MCGetControllerBoundsRect(MovieController controller, Rect* bounds)
{
    const OSErr err = Announce("MCGetControllerBoundsRect");
    *bounds = controller->Bounds();
    return err;
}

SInt32 MCSetControllerBoundsRect(MovieController controller, const Rect* bounds)
{
    if (const OSErr err = Announce("MCSetControllerBoundsRect")) {
        return Note(err);
    }
    controller->SetBounds(*bounds);
    return Note(noErr);
}

SInt32 MCSetClip(MovieController controller, RgnHandle clip, RgnHandle)
{
    if (const OSErr err = Announce("MCSetClip")) {
        return Note(err);
    }
    controller->SetClip(clip);
    return Note(noErr);
}

SInt32 MCMovieChanged(MovieController controller, Movie)
{
    if (const OSErr err = Announce("MCMovieChanged")) {
        return Note(err);
    }
    controller->Idle();
    return Note(noErr);
}

SInt32 MCIsPlayerEvent(MovieController controller, const EventRecord* event)
{
    return Announce("MCIsPlayerEvent") == noErr && controller->HandleEvent(*event) ? 1 : 0;
}

void SetSoundSink(const ToolboxSoundSink* sink)
{
    Announce("SetSoundSink");
    gSoundSink = sink != nullptr ? *sink : ToolboxSoundSink{};
}

void GetMovieStatistics(void* owner, MovieStatistics* statistics)
{
    Announce("GetMovieStatistics");
    *statistics = MovieStatistics{};
    for (const Movie movie : LiveMovies().Of(owner)) {
        ++statistics->movies;
        statistics->picturesShown += movie->PicturesShown();
        statistics->picturesDropped += movie->PicturesDropped();
        statistics->soundFrames += movie->SoundFrames();
        statistics->durationSeconds = static_cast<double>(movie->Duration()) / 1e9;
        statistics->playing = statistics->playing || movie->IsPlaying();
        statistics->waiting = statistics->waiting || movie->IsHeldUp();
        statistics->loadState = movie->LoadState();
        statistics->timeSeconds = static_cast<double>(movie->Time()) / 1e9;
        statistics->atEnd = movie->IsAtEnd();
    }
}

SInt64 NextToolboxDeadline(void)
{
    Announce("NextToolboxDeadline");
    return EarliestDeadline(LiveMovies().All());
}

SInt64 NextMovieDeadline(void* owner)
{
    Announce("NextMovieDeadline");
    return EarliestDeadline(LiveMovies().Of(owner));
}

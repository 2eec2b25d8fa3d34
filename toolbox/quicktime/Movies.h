/* SPDX-License-Identifier: MIT
 *
 * QuickTime movies and the standard movie controller.
 *
 * A movie's data is reached only through a data handler component, also while it is still
 * arriving. Every slice of work (MoviesTask, GetMovieLoadState, a controller action) is bounded
 * and waits for nothing; only MoviesTask may yield, as its last step, in the data handler's Task.
 * Times are in units of 1/90000 second.
 */
#ifndef VORN_TOOLBOX_MOVIES_H
#define VORN_TOOLBOX_MOVIES_H

#include "toolbox/events/Events.h"
#include "toolbox/quickdraw/QuickDraw.h"

TOOLBOX_BEGIN_DECLS

typedef struct MovieRecord* Movie;
typedef struct MovieControllerRecord* MovieController;
typedef SInt32 TimeValue;
typedef SInt16 MCAction;

enum { kMovieTimeScale = 90000 };

enum { newMovieAsyncOK = 1 << 8, newMovieIdleImportOK = 1 << 10 };
enum {
    kMovieLoadStateError = -1,
    kMovieLoadStateLoading = 1000,
    kMovieLoadStateLoaded = 2000,
    kMovieLoadStatePlayable = 10000,
    kMovieLoadStatePlaythroughOK = 20000,
    kMovieLoadStateComplete = 100000
};
enum { mcTopLeftMovie = 1 << 0, mcScaleMovieToFit = 1 << 1 };
enum {
    mcActionIdle = 1,         /* no parameter */
    mcActionDraw = 2,         /* WindowRef */
    mcActionMovieChanged = 77 /* no parameter: look at the movie again, it grew */
};

/* True when movies can be played in this process at all: the entry points below are backed by
 * codecs. The question that a weak link answers elsewhere. */
TOOLBOX_EXPORT Boolean QuickTimePresent(void);
TOOLBOX_EXPORT OSErr EnterMovies(void);

/* Opens a movie from a data reference through the data handler component whose subtype is
 * `dataRefType` (cantOpenHandler if there is none, else what the handler said). With
 * newMovieAsyncOK it returns at once and the load state tells how it went; without it, it reads
 * until the movie is playable, over or in error, and fails with noMovieFound where there is none.
 * *movie is written last, null on failure. The data reference is copied. */
TOOLBOX_EXPORT OSErr NewMovieFromDataRef(Movie* movie, SInt16 flags, SInt16* id, Handle dataRef,
                                         OSType dataRefType);
TOOLBOX_EXPORT void DisposeMovie(Movie movie);
/* Stops playing; from then on nothing more is read from the data handler. */
TOOLBOX_EXPORT void StopMovie(Movie movie);
/* Gives the movie (null: all) a slice of work, then the data handler's Task. */
TOOLBOX_EXPORT void MoviesTask(Movie movie, SInt32 maxMilliseconds);
/* The error of the last movie operation, forgotten by asking. */
TOOLBOX_EXPORT OSErr GetMoviesError(void);
/* The picture's own size, one unit for each stored pixel, whatever shape the data gives to its
 * pixels: what is shown in this box is what a plain decode gives. Empty for sound alone or while
 * nothing is known. */
TOOLBOX_EXPORT void GetMovieBox(Movie movie, Rect* box);
TOOLBOX_EXPORT SInt32 GetMovieLoadState(Movie movie);
/* 0, or why the movie is in error. `track`, if not null, is set to null. */
TOOLBOX_EXPORT OSErr GetMovieStatus(Movie movie, void** track);
/* The length known or announced so far. */
TOOLBOX_EXPORT TimeValue GetMovieDuration(Movie movie);
/* The end of what has arrived, after taking in what is there: all of it up to 4 MiB beyond what had
 * been taken in before, of more the beginning. */
TOOLBOX_EXPORT OSErr GetMaxLoadedTimeInMovie(Movie movie, TimeValue* time);
/* Removes [start, start + duration) from the movie, where that reaches its present end: announced
 * time goes; time that later arrives still plays. A duration of 0 does nothing. */
TOOLBOX_EXPORT OSErr DeleteMovieSegment(Movie movie, TimeValue start, TimeValue duration);
TOOLBOX_EXPORT void SetMovieGWorld(Movie movie, CGrafPtr port, GDHandle device);
/* An inactive movie is neither played nor drawn. */
TOOLBOX_EXPORT void SetMovieActive(Movie movie, Boolean active);

/* The standard controller for a movie whose picture stands in `box`: a bar of 16 pixels below it.
 * Its bounds hold both. Null without memory. */
TOOLBOX_EXPORT MovieController NewMovieController(Movie movie, const Rect* box, SInt32 flags);
TOOLBOX_EXPORT void DisposeMovieController(MovieController controller);
TOOLBOX_EXPORT SInt32 MCDoAction(MovieController controller, MCAction action, void* parameter);
TOOLBOX_EXPORT SInt32 MCGetVisible(MovieController controller);
TOOLBOX_EXPORT SInt32 MCGetControllerBoundsRect(MovieController controller, Rect* bounds);
/* Moves and sizes the controller: the picture takes what the bar leaves. */
TOOLBOX_EXPORT SInt32 MCSetControllerBoundsRect(MovieController controller, const Rect* bounds);
/* Copies the clip region for controller and picture; null: none. */
TOOLBOX_EXPORT SInt32 MCSetClip(MovieController controller, RgnHandle clip, RgnHandle movieClip);
TOOLBOX_EXPORT SInt32 MCMovieChanged(MovieController controller, Movie movie);
/* Handles an event if it is the controller's; 1 when it was, else 0. The pointer is taken to where
 * the movie's port stands on the screen. Its keys: the space bar plays and pauses; left and right
 * step by one picture, with the shift key go by 5 seconds, with the command key by a minute; up
 * and down change the volume. */
TOOLBOX_EXPORT SInt32 MCIsPlayerEvent(MovieController controller, const EventRecord* event);

/* For hosts ------------------------------------------------------------------------------- */

/* Where sound goes. Frames are 16-bit native-endian samples, channels interleaved. */
typedef struct ToolboxSoundSink {
    /* A movie starts to sound; what it returns names the stream (null: not heard). */
    void* (*open)(void* refCon, SInt32 sampleRate, SInt32 channels);
    /* The next frames of a stream, due from `atMicroseconds` of the toolbox clock on. */
    void (*play)(void* refCon, void* stream, const SInt16* frames, SInt32 count,
                 SInt64 atMicroseconds);
    void (*close)(void* refCon, void* stream);
    void* refCon;
    /* For a sink that is heard. Those that follow may be null.
     * A movie is about to sound: how many microseconds before they are due frames must be given to
     * be heard in time. The movie begins that much later and gives its sound ahead from then on.
     * Null: frames are given when they are due. */
    SInt64 (*prepare)(void* refCon, void* stream);
    /* Frames that were given are not to be heard if they are due from then on: the movie pauses,
     * and gives them again when it goes on. Not null where `prepare` is not. */
    void (*recall)(void* refCon, void* stream, SInt64 atMicroseconds);
    /* How loud the stream is from now on: 0 to 256, which it is at first. Null: frames are given as
     * loud as they are to be. */
    void (*setVolume)(void* refCon, void* stream, SInt32 volume);
} ToolboxSoundSink;
/* Copies the sink; null: sound is decoded, counted and dropped. Set before movies play. */
TOOLBOX_EXPORT void SetSoundSink(const ToolboxSoundSink* sink);

/* What the movies of a statistics owner (toolbox/threads/Threads.h) have done. */
typedef struct MovieStatistics {
    SInt32 movies;          /* alive now */
    SInt32 picturesShown;   /* different pictures drawn */
    SInt32 picturesDropped; /* due, but overtaken before they were drawn */
    SInt64 soundFrames;     /* sample frames given to the sink */
    double durationSeconds; /* of the movie opened last; 0 if none */
    Boolean playing;        /* any of them */
    Boolean waiting;        /* playing, but held up for bytes that have not arrived */
    SInt32 loadState;       /* of the movie opened last; 0 if none */
    double timeSeconds;     /* where the movie opened last stands; 0 if none */
    Boolean atEnd;          /* it stands at its end, and all of it is there */
} MovieStatistics;
TOOLBOX_EXPORT void GetMovieStatistics(void* owner, MovieStatistics* statistics);

/* When the toolbox next needs time: microseconds of its clock (not before now) until a picture or
 * sound is due or a fiber is ready, or -1 when nothing is pending. */
TOOLBOX_EXPORT SInt64 NextToolboxDeadline(void);
/* The same for the movies of a statistics owner. */
TOOLBOX_EXPORT SInt64 NextMovieDeadline(void* owner);

TOOLBOX_END_DECLS

#endif

// SPDX-License-Identifier: MIT
//
// A movie toolbox that does nothing but what a test tells it. A test program that links this file
// has it in place of the toolbox's own; every call is kept, with its arguments, in the probe.
#pragma once

#include "toolbox/files/Files.h"
#include "toolbox/quicktime/Movies.h"

#include <functional>
#include <string>
#include <vector>

namespace test
{

struct ScriptedMovies {
    // What the calls answer.
    bool present = true;
    OSErr enterMoviesResult = 0;
    OSErr openResult = 0;
    SInt32 loadState = kMovieLoadStatePlayable;
    OSErr movieStatus = 0;
    OSErr moviesError = 0;
    TimeValue duration = 0;
    TimeValue maxLoadedTime = 0;
    Rect movieBox{};
    bool makesController = true;
    SInt32 controllerVisible = 1;
    Rect controllerBounds{};
    SInt32 isPlayerEvent = 0;
    // Runs inside every call, after it is kept; may throw.
    std::function<void(const std::string& call)> onCall;

    // What the calls were given.
    FSSpec openedFile{}; // in the data reference
    CGrafPtr portAtOpen = nullptr;
    CGrafPtr portAtTask = nullptr;
    CGrafPtr movieWorldPort = nullptr;
    GDHandle movieWorldDevice = nullptr;
    void* actionParameter = nullptr;
    Rect clipRect{}; // the clip's only rectangle
    SInt32 moviesAlive = 0;
    SInt32 controllersAlive = 0;

    // The only movie and controller there ever are.
    static Movie TheMovie();
    static MovieController TheController();
};

// The script in force, and a fresh one.
ScriptedMovies& Movies();
void ResetMovies();

} // namespace test

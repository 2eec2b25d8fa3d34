// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

// Someone who wants to know how far a movie's bytes have come. The movie plug-in does not own its
// listeners. Progress and completion come on the decoding thread, death on the one that destroys
// the plug-in.
class VornMovieLoadListener
{
public:
    virtual ~VornMovieLoadListener() = default;
    // All bytes are on disk, `totalBytes` of them.
    virtual void LoadComplete(SInt32 totalBytes) = 0;
    // The first `bytesSoFar` bytes are on disk; more will come.
    virtual void LoadProgress(SInt32 bytesSoFar) = 0;
    // The plug-in is being destroyed: forget it.
    virtual void NotifyListenerOfPluginDeath() = 0;
};

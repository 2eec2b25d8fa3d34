// SPDX-License-Identifier: MIT
//
// How often an image is given time, which it cannot say itself.
#pragma once

#include "toolbox/Types.h"

namespace viewer
{

class IdleRhythm
{
public:
    // Once in every tick, so that each frame comes at its tick; or as often while something
    // changes, and then ever more slowly: a page of stills costs next to nothing.
    enum class Kind { kEveryTick, kSlackening };

    // Times are microseconds of the page's clock.
    bool IsDue(SInt64 now) const { return now >= next_; }
    SInt64 Next() const { return next_; }
    // The image has been given time.
    void Idled(SInt64 now, Kind kind);
    // It has changed, or somebody has changed it: it is due soon.
    void Changed(SInt64 now);

private:
    SInt64 next_ = 0;
    SInt64 lastChange_ = 0;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// Lets one movie object of a bundle at a time be between its creation and the opening of its
// movie.
#pragma once

#include "toolbox/Types.h"

namespace viewer
{

// A bundle's data handler belongs to the movie object that was made, asked or freed last; it is
// bound when the movie is opened. So the next creation, type check or release has to wait until
// the last object has opened its movie or cannot do so any more.
class Admission
{
public:
    // What is to be seen of the object that was let in.
    struct Progress {
        bool hasDimensions = false;
        bool idleFailed = false;
        bool isSettled =
            false; // decoding has ended and one full round of yields and an Idle passed
        SInt32 bytesTaken = 0;
    };
    enum class State {
        kFree,    // the next one may come
        kOpening, // an object was let in
        kStalled  // it has taken no byte for the time limit: it may be taken out again
    };
    static constexpr SInt64 kTimeLimit = 2'000'000; // microseconds

    State Current() const { return state_; }
    // An object is about to be made. Only while free.
    void Begin(SInt64 now);
    // To be called after each round of yields and an Idle while an object is opening.
    void Judge(const Progress& progress, SInt64 now);
    // The object that was let in has been freed.
    void End() { state_ = State::kFree; }
    // When the object that was let in will count as stalled unless it goes on.
    SInt64 StallsAt() const { return lastProgress_ + kTimeLimit; }

private:
    State state_ = State::kFree;
    SInt64 lastProgress_ = 0;
    SInt32 bytesTaken_ = 0;
};

} // namespace viewer

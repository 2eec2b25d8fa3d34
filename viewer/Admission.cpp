// SPDX-License-Identifier: MIT
#include "viewer/Admission.h"

namespace viewer
{

void Admission::Begin(SInt64 now)
{
    state_ = State::kOpening;
    lastProgress_ = now;
    bytesTaken_ = 0;
}

void Admission::Judge(const Progress& progress, SInt64 now)
{
    if (state_ == State::kFree) {
        return;
    }
    if (progress.hasDimensions || progress.idleFailed || progress.isSettled) {
        state_ = State::kFree;
        return;
    }
    if (progress.bytesTaken != bytesTaken_) {
        bytesTaken_ = progress.bytesTaken;
        lastProgress_ = now;
    }
    state_ = now >= StallsAt() ? State::kStalled : State::kOpening;
}

} // namespace viewer

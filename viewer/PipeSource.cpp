// SPDX-License-Identifier: MIT
#include "viewer/PipeSource.h"

#include <cerrno>
#include <poll.h>

namespace viewer
{

PipeSource::PipeSource(FileDescriptor pipe) : pipe_(std::move(pipe)) {}

void PipeSource::Pump(SInt32 end)
{
    isBehind_ = false;
    while (pipe_.IsOpen() && !IsComplete() && Received() < end) {
        switch (LookForInput()) {
        case Input::kNone:
            isBehind_ = true;
            return;
        case Input::kBytes:
            TakeBlock();
            break;
        case Input::kEnd:
            Complete();
            break;
        }
    }
}

// A FIFO that nobody has opened for writing yet reads like one at its end; only poll tells the
// two apart. Looking first also makes a read from a blocking descriptor return at once.
PipeSource::Input PipeSource::LookForInput()
{
    pollfd look{pipe_.Get(), POLLIN, 0};
    if (poll(&look, 1, 0) <= 0) {
        return Input::kNone;
    }
    return (look.revents & POLLIN) != 0 ? Input::kBytes : Input::kEnd;
}

void PipeSource::TakeBlock()
{
    const ssize_t got = read(pipe_.Get(), block_.data(), block_.size());
    if (got > 0) {
        Keep(block_.data(), static_cast<size_t>(got));
    } else if (got == 0) {
        Complete();
    } else if (errno != EINTR && errno != EAGAIN) {
        End(FailureFromErrno(errno));
    }
}

void PipeSource::StopReceiving()
{
    pipe_ = FileDescriptor();
    isBehind_ = false;
}

} // namespace viewer

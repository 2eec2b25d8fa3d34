// SPDX-License-Identifier: MIT
#include "viewer/PipeSource.h"

#include "viewer/ReadFully.h"
#include "viewer/TemporaryPlace.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>

namespace viewer
{
namespace
{

// Nothing is wrong with the stream if there is no place for it.
[[noreturn]] void ThrowNoPlace(int number)
{
    SourceFailure failure = FailureFromErrno(number);
    failure.text = "a stream cannot be kept in '" + TemporaryPlace() + "': " + failure.text;
    throw failure;
}

FileDescriptor MakeNamelessFile()
{
    std::string path = TemporaryPlace();
    const int nameless = open(path.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (nameless >= 0) {
        return FileDescriptor(nameless);
    }
    path += "/vornview-XXXXXX"; // not every file system has files without a name
    FileDescriptor named(mkostemp(path.data(), O_CLOEXEC));
    if (!named.IsOpen()) {
        ThrowNoPlace(errno);
    }
    unlink(path.c_str());
    return named;
}

} // namespace

PipeSource::PipeSource(FileDescriptor pipe) : pipe_(std::move(pipe)), kept_(MakeNamelessFile()) {}

void PipeSource::Pump(SInt32 end)
{
    isBehind_ = false;
    while (pipe_.IsOpen() && !complete_ && received_ < end) {
        switch (LookForInput()) {
        case Input::kNone:
            isBehind_ = true;
            return;
        case Input::kBytes:
            TakeBlock();
            break;
        case Input::kEnd:
            complete_ = true;
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
        complete_ = true;
    } else if (errno != EINTR && errno != EAGAIN) {
        End(FailureFromErrno(errno));
    }
}

void PipeSource::Keep(const UInt8* bytes, size_t count)
{
    if (received_ + static_cast<SInt64>(count) >= kObjectSizeLimit) {
        End(TooLargeFailure());
        return;
    }
    size_t written = 0;
    while (written < count) {
        const ssize_t put = pwrite(kept_.Get(), bytes + written, count - written, received_);
        if (put < 0 && errno != EINTR) {
            End(FailureFromErrno(errno));
            return;
        }
        const size_t advance = put > 0 ? static_cast<size_t>(put) : 0;
        written += advance;
        received_ += static_cast<SInt32>(advance);
    }
}

void PipeSource::End(SourceFailure failure)
{
    Fail(std::move(failure));
    complete_ = true;
}

void PipeSource::StopReceiving()
{
    pipe_ = FileDescriptor();
    isBehind_ = false;
}

SInt32 PipeSource::Read(void* buffer, SInt32 offset, SInt32 count)
{
    const SInt32 copied = ReadFully(kept_.Get(), buffer, offset, count);
    if (copied < count) {
        received_ = offset + copied;
        End(FailureFromErrno(errno != 0 ? errno : EIO));
    }
    return copied;
}

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/SpooledSource.h"

#include "viewer/ReadFully.h"
#include "viewer/TemporaryPlace.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>

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

SpooledSource::SpooledSource() : kept_(MakeNamelessFile()) {}

bool SpooledSource::Keep(const void* bytes, size_t count)
{
    if (received_ + static_cast<SInt64>(count) >= kObjectSizeLimit) {
        End(TooLargeFailure());
        return false;
    }
    size_t written = 0;
    while (written < count) {
        const ssize_t put = pwrite(kept_.Get(), static_cast<const UInt8*>(bytes) + written,
                                   count - written, received_);
        if (put < 0 && errno != EINTR) {
            End(FailureFromErrno(errno));
            return false;
        }
        const size_t advance = put > 0 ? static_cast<size_t>(put) : 0;
        written += advance;
        received_ += static_cast<SInt32>(advance);
    }
    return true;
}

void SpooledSource::End(SourceFailure failure)
{
    Fail(std::move(failure));
    complete_ = true;
}

SInt32 SpooledSource::Read(void* buffer, SInt32 offset, SInt32 count)
{
    const SInt32 copied = ReadFully(kept_.Get(), buffer, offset, count);
    if (copied < count) {
        received_ = offset + copied;
        End(FailureFromErrno(errno != 0 ? errno : EIO));
    }
    return copied;
}

FileDescriptor SpooledSource::KeptFile() const
{
    return FileDescriptor(fcntl(kept_.Get(), F_DUPFD_CLOEXEC, 0));
}

} // namespace viewer

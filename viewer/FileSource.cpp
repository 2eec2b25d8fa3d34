// SPDX-License-Identifier: MIT
#include "viewer/FileSource.h"

#include "viewer/ReadFully.h"

#include <cerrno>
#include <fcntl.h>

namespace viewer
{

FileSource::FileSource(FileDescriptor file, SInt32 size) : file_(std::move(file)), size_(size) {}

SInt32 FileSource::Read(void* buffer, SInt32 offset, SInt32 count)
{
    const SInt32 copied = ReadFully(file_.Get(), buffer, offset, count);
    if (copied < count) {
        size_ = offset + copied;
        Fail(errno != 0 ? FailureFromErrno(errno)
                        : SourceFailure{ioErr, "the file became shorter while it was read"});
    }
    return copied;
}

FileDescriptor FileSource::KeptFile() const
{
    return FileDescriptor(fcntl(file_.Get(), F_DUPFD_CLOEXEC, 0));
}

} // namespace viewer

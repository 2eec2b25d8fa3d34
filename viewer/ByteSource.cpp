// SPDX-License-Identifier: MIT
#include "viewer/ByteSource.h"

#include "viewer/FileSource.h"
#include "viewer/HttpUrl.h"
#include "viewer/PipeSource.h"
#include "viewer/ViewerPart.h"
#include "viewer/web/WebPart.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace viewer
{
namespace
{

OSErr ErrorFromErrno(int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
        return fnfErr;
    case EACCES:
    case EPERM:
        return permErr;
    case ENOSPC:
        return dskFulErr;
    case ENOMEM:
        return memFullErr;
    case EMFILE:
    case ENFILE:
        return tmfoErr;
    default:
        return ioErr;
    }
}

FileDescriptor Open(const std::string& location)
{
    // A FIFO would hold up the opening until someone writes to it.
    const int number = location == "-" ? dup(STDIN_FILENO)
                                       : open(location.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (number < 0) {
        throw FailureFromErrno(errno);
    }
    return FileDescriptor(number);
}

std::unique_ptr<ByteSource> OpenUrl(const std::string& url)
{
    static const auto open = ViewerPart("VornWeb").Find<decltype(VornOpenUrl)>("VornOpenUrl");
    std::unique_ptr<ByteSource> source;
    open(url, source);
    return source;
}

} // namespace

SourceFailure FailureFromErrno(int number)
{
    return {ErrorFromErrno(number), std::strerror(number)};
}

SourceFailure TooLargeFailure()
{
    return {paramErr, "objects of 2147483648 bytes or more cannot be shown"};
}

std::unique_ptr<ByteSource> OpenSource(const std::string& location)
{
    if (IsHttpUrl(location)) {
        return OpenUrl(location);
    }
    FileDescriptor file = Open(location);
    struct stat status {
    };
    if (fstat(file.Get(), &status) != 0) {
        throw FailureFromErrno(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        throw SourceFailure{ioErr, "there is no file in this folder that can be shown"};
    }
    if (!S_ISREG(status.st_mode)) {
        return std::make_unique<PipeSource>(std::move(file));
    }
    if (status.st_size >= kObjectSizeLimit) {
        throw TooLargeFailure();
    }
    return std::make_unique<FileSource>(std::move(file), static_cast<SInt32>(status.st_size));
}

bool MayBeOpened(const std::string& location)
{
    if (location == "-" || IsHttpUrl(location)) {
        return true;
    }
    struct stat status {
    };
    if (stat(location.c_str(), &status) != 0 || access(location.c_str(), R_OK) != 0) {
        return false;
    }
    const bool isTooLarge = S_ISREG(status.st_mode) && status.st_size >= kObjectSizeLimit;
    return !S_ISDIR(status.st_mode) && !isTooLarge;
}

} // namespace viewer

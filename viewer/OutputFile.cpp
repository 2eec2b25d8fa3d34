// SPDX-License-Identifier: MIT
#include "viewer/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace viewer
{
namespace
{

namespace fs = std::filesystem;

constexpr mode_t kPermissionBits = 07777;
constexpr mode_t kPermissionsOfNewFiles = 0666;

mode_t PermissionsOfNewFile()
{
    const mode_t mask = umask(0);
    umask(mask);
    return kPermissionsOfNewFiles & ~mask;
}

// Such a name stands for something that is open, whatever it is; nothing may take its place.
bool IsNameOfSystem(const std::string& path)
{
    return path.starts_with("/dev/") || path.starts_with("/proc/");
}

int OpenStandardOutput()
{
    std::fflush(stdout); // what others have written comes first
    return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
}

int OpenInPlace(const std::string& path)
{
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOCTTY | O_CLOEXEC,
                kPermissionsOfNewFiles);
}

bool MayNotMakeFiles(int error)
{
    return error == EACCES || error == EPERM || error == EROFS;
}

} // namespace

OutputFile::OutputFile(const std::string& path, std::string what)
    : path_(path), what_(std::move(what))
{
    Open(path);
}

void OutputFile::Open(const std::string& path)
{
    int file = -1;
    struct stat status {
    };
    const bool exists = stat(path.c_str(), &status) == 0;
    std::error_code ignored;
    const bool isStandardOutput = path == "-" || path == "/dev/stdout";
    if (isStandardOutput) {
        file = OpenStandardOutput();
    } else if (IsNameOfSystem(path) || (exists && !S_ISREG(status.st_mode)) ||
               (!exists && fs::is_symlink(path, ignored))) {
        file = OpenInPlace(path);
    } else if (exists) {
        file = OpenBeside(fs::canonical(path, ignored), status.st_mode & kPermissionBits);
        file = file < 0 && MayNotMakeFiles(errno) ? OpenInPlace(path) : file;
    } else {
        file = OpenBeside(path, PermissionsOfNewFile());
    }
    if (file < 0) {
        Fail();
    }
    canRewind_ = !isStandardOutput && fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    stream_.reset(fdopen(file, "wb"));
}

// The descriptor of a new file, -1 with errno set.
int OutputFile::OpenBeside(const std::string& path, mode_t mode)
{
    std::string name = fs::path(path).replace_filename(".vornview-XXXXXX").string();
    const int file = mkostemp(name.data(), O_CLOEXEC);
    if (file >= 0) {
        target_ = path;
        temporary_ = name;
        fchmod(file, mode);
    }
    return file;
}

OutputFile::~OutputFile()
{
    Discard();
}

void OutputFile::Discard()
{
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        temporary_.clear();
    }
}

void OutputFile::Write(const void* bytes, size_t count)
{
    if (std::fwrite(bytes, 1, count, stream_.get()) != count) {
        Fail();
    }
}

bool OutputFile::Rewind()
{
    return canRewind_ && std::fseek(stream_.get(), 0, SEEK_SET) == 0;
}

void OutputFile::Commit()
{
    errno = 0;
    const bool failed = std::ferror(stream_.get()) != 0;
    if (std::fclose(stream_.release()) != 0 || failed) {
        Fail();
    }
    if (!temporary_.empty() && std::rename(temporary_.c_str(), target_.c_str()) != 0) {
        Fail();
    }
    temporary_.clear();
}

void OutputFile::Fail() const
{
    Fail(std::strerror(errno != 0 ? errno : EIO));
}

void OutputFile::Fail(const std::string& reason) const
{
    throw OutputFailure(path_ + ": " + what_ + " could not be written: " + reason);
}

} // namespace viewer

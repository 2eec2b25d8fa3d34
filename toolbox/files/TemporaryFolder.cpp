// SPDX-License-Identifier: MIT
#include "toolbox/files/TemporaryFolder.h"

#include "toolbox/Errors.h"
#include "toolbox/files/SystemErrors.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace toolbox
{
namespace
{

constexpr const char* kPrefix = "vorn-spool-";
constexpr int kMostAttempts = 100;

[[noreturn]] void ThrowSystemError()
{
    throw ErrorFromSystem(errno);
}

FileDescriptor OpenParent(const std::string& path)
{
    return FileDescriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

bool IsStillNamed(int parent, const char* name, const struct stat& folder)
{
    struct stat named {
    };
    return fstatat(parent, name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           named.st_dev == folder.st_dev && named.st_ino == folder.st_ino;
}

// Opens and locks a folder of this user; closed if it is another's, in use, or was removed by
// whoever had the lock a moment before.
FileDescriptor LockFolder(int parent, const char* name)
{
    FileDescriptor folder(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {
    };
    const bool locked = folder.IsOpen() && fstat(folder.Get(), &status) == 0 &&
                        status.st_uid == geteuid() && flock(folder.Get(), LOCK_EX | LOCK_NB) == 0 &&
                        IsStillNamed(parent, name, status);
    return locked ? std::move(folder) : FileDescriptor();
}

std::vector<std::string> NamesIn(int folder)
{
    // With a reading position of its own.
    FileDescriptor listed(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(fdopendir(listed.Get()), closedir);
    std::vector<std::string> names;
    if (listing == nullptr) {
        return names;
    }
    listed.Release();
    while (const dirent* const entry = readdir(listing.get())) {
        names.emplace_back(entry->d_name);
    }
    return names;
}

bool IsPlainFile(int folder, const char* name)
{
    struct stat status {
    };
    return fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode);
}

// The folder is locked by the caller.
void RemoveFolder(int parent, const char* name, int folder)
{
    for (const std::string& file : NamesIn(folder)) {
        if (IsPlainFile(folder, file.c_str())) {
            unlinkat(folder, file.c_str(), 0);
        }
    }
    unlinkat(parent, name, AT_REMOVEDIR);
}

} // namespace

TemporaryFolder::TemporaryFolder(const std::string& parent)
    : parent_(OpenParent(parent)), owner_(getpid())
{
    if (!parent_.IsOpen()) {
        ThrowSystemError();
    }
    // Another process that is cleaning up may take a new folder for an abandoned one before the
    // lock is there; then that folder is lost and the next one is tried.
    for (int attempt = 0; attempt < kMostAttempts && !folder_.IsOpen(); ++attempt) {
        Make(parent);
    }
    if (!folder_.IsOpen()) {
        throw OSErr{ioErr};
    }
}

void TemporaryFolder::Make(const std::string& parent)
{
    std::string path = parent + "/" + kPrefix + "XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        ThrowSystemError();
    }
    name_ = path.substr(path.rfind('/') + 1);
    // The process's umask may have taken bits away without which the folder cannot be opened.
    if (fchmodat(parent_.Get(), name_.c_str(), S_IRWXU, AT_SYMLINK_NOFOLLOW) == 0) {
        folder_ = LockFolder(parent_.Get(), name_.c_str());
    }
    if (!folder_.IsOpen()) {
        unlinkat(parent_.Get(), name_.c_str(), AT_REMOVEDIR);
    }
}

void TemporaryFolder::Remove()
{
    if (getpid() == owner_ && !IsGone()) {
        RemoveFolder(parent_.Get(), name_.c_str(), folder_.Get());
    }
}

bool TemporaryFolder::IsGone() const
{
    struct stat status {
    };
    return fstat(folder_.Get(), &status) != 0 || status.st_nlink == 0;
}

void RemoveFoldersOfDeadProcesses(const std::string& parent)
{
    const FileDescriptor directory = OpenParent(parent);
    if (!directory.IsOpen()) {
        return;
    }
    for (const std::string& name : NamesIn(directory.Get())) {
        if (!name.starts_with(kPrefix)) {
            continue;
        }
        const FileDescriptor folder = LockFolder(directory.Get(), name.c_str());
        if (folder.IsOpen()) {
            RemoveFolder(directory.Get(), name.c_str(), folder.Get());
        }
    }
}

} // namespace toolbox

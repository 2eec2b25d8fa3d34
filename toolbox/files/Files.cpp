// SPDX-License-Identifier: MIT
#include "toolbox/files/Files.h"

#include "toolbox/Errors.h"
#include "toolbox/files/FileNamesOnDisk.h"
#include "toolbox/files/PathTable.h"
#include "toolbox/files/SystemErrors.h"
#include "toolbox/files/TemporaryFolder.h"
#include "toolbox/probe/Announce.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <map>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using toolbox::Announce;
using toolbox::ErrorFromSystem;
using toolbox::FileDescriptor;
using toolbox::Path;
using toolbox::TemporaryFolder;

namespace
{

// There is one volume, and the numbers of directories are unique by themselves: the volume that
// an operation is given does not matter.
constexpr SInt16 kVolume = -1;
constexpr SInt32 kTemporaryFolderID = 100;
constexpr size_t kMostNameCharacters = 31;
constexpr SInt64 kMostFileBytes = std::numeric_limits<SInt32>::max();

struct FileKind {
    OSType type;
    OSType creator;
};

// Made at the first wish and never destroyed, as files are used until the process ends.
TemporaryFolder* gTemporaryFolder = nullptr;

// The kinds of the files that this process created, by their names on disk.
std::map<std::string, FileKind>& Kinds()
{
    static auto& kinds = *new std::map<std::string, FileKind>;
    return kinds;
}

// The frame of every operation: announces it and turns what is thrown into its result.
template <class Steps>
OSErr Perform(const char* operation, Steps steps)
{
    if (const OSErr err = Announce(operation)) {
        return err;
    }
    try {
        steps();
        return noErr;
    } catch (OSErr err) {
        return err;
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
}

void Require(bool condition, int err)
{
    if (!condition) {
        throw static_cast<OSErr>(err);
    }
}

std::string TemporaryParent()
{
    const char* const named = std::getenv("TMPDIR");
    return named != nullptr && *named != 0 ? named : "/tmp";
}

void MakeTemporaryFolder()
{
    const std::string parent = TemporaryParent();
    toolbox::RemoveFoldersOfDeadProcesses(parent);
    gTemporaryFolder = new TemporaryFolder(parent);
    std::atexit([] { gTemporaryFolder->Remove(); });
}

TemporaryFolder& FolderOf(SInt32 dirID)
{
    Require(dirID == kTemporaryFolderID && gTemporaryFolder != nullptr, dirNFErr);
    return *gTemporaryFolder;
}

struct Place {
    TemporaryFolder& folder;
    std::string name; // on disk
};

Place PlaceOf(SInt32 dirID, ConstStringPtr name)
{
    TemporaryFolder& folder = FolderOf(dirID);
    Require(name[0] > 0 && name[0] <= kMostNameCharacters, bdNamErr);
    const std::string macRoman(name + 1, name + 1 + name[0]);
    return {folder, toolbox::FileNameOnDisk(macRoman)};
}

Place PlaceOf(const FSSpec* spec)
{
    Require(spec != nullptr, paramErr);
    return PlaceOf(spec->parID, spec->name);
}

// Passes on what the system says of a place, 0 being success.
void Check(int result, const TemporaryFolder& folder)
{
    if (result < 0) {
        const int error = errno;
        Require(error != ENOENT || !folder.IsGone(), dirNFErr);
        throw ErrorFromSystem(error);
    }
}

FileDescriptor OpenAt(const Place& place, int flags)
{
    const int descriptor =
        openat(place.folder.Descriptor(), place.name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, 0600);
    Check(descriptor, place.folder);
    return FileDescriptor(descriptor);
}

SInt32 LengthIn(const struct stat& status)
{
    return static_cast<SInt32>(std::min<SInt64>(status.st_size, kMostFileBytes));
}

void FillIn(CInfoPBRec& block, const struct stat& status, const std::string& name)
{
    const bool isDirectory = S_ISDIR(status.st_mode);
    const auto kind = Kinds().find(name);
    const bool known = !isDirectory && kind != Kinds().end();
    block.ioFlAttrib = isDirectory ? kioFlAttribDirMask : 0;
    block.ioFlFndrType = known ? kind->second.type : 0;
    block.ioFlFndrCreator = known ? kind->second.creator : 0;
    block.ioFlLgLen = LengthIn(status);
}

void LookUp(CInfoPBRec& block)
{
    struct stat status {
    };
    if (block.ioNamePtr == nullptr || block.ioNamePtr[0] == 0) {
        const TemporaryFolder& folder = FolderOf(block.ioDirID);
        Require(!folder.IsGone(), dirNFErr);
        Check(fstat(folder.Descriptor(), &status), folder);
        FillIn(block, status, "");
        return;
    }
    const Place place = PlaceOf(block.ioDirID, block.ioNamePtr);
    Check(fstatat(place.folder.Descriptor(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW),
          place.folder);
    FillIn(block, status, place.name);
}

bool IsPlainFile(const FileDescriptor& file)
{
    struct stat status {
    };
    return fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode);
}

// Calls transfer(bytes done so far, bytes left) until all of `wanted` bytes are done or it says
// otherwise, and moves the mark over what was done.
template <class Transfer>
void TransferAtMark(Path& path, SInt32 wanted, SInt32& done, Transfer transfer)
{
    while (done < wanted) {
        const ssize_t now = transfer(done, static_cast<size_t>(wanted - done));
        if (now < 0 && errno == EINTR) {
            continue;
        }
        if (now < 0) {
            throw ErrorFromSystem(errno);
        }
        Require(now > 0, eofErr);
        done += static_cast<SInt32>(now);
        path.mark += now;
    }
}

// What was asked for; from then on `*count` is what was done.
SInt32 TakeCount(SInt32* count)
{
    Require(count != nullptr, paramErr);
    const SInt32 wanted = std::exchange(*count, 0);
    Require(wanted >= 0, paramErr);
    return wanted;
}

} // namespace

OSErr FindFolder(SInt16 /*vRefNum*/, OSType folderType, Boolean createFolder, SInt16* foundVRefNum,
                 SInt32* foundDirID)
{
    return Perform("FindFolder", [&] {
        Require(foundVRefNum != nullptr && foundDirID != nullptr, paramErr);
        Require(folderType == kTemporaryFolderType, fnfErr);
        if (gTemporaryFolder == nullptr) {
            Require(createFolder != 0, fnfErr);
            MakeTemporaryFolder();
        }
        *foundVRefNum = kVolume;
        *foundDirID = kTemporaryFolderID;
    });
}

OSErr PBGetCatInfoSync(CInfoPBRec* block)
{
    return Perform("PBGetCatInfoSync", [&] {
        Require(block != nullptr && block->ioFDirIndex == 0, paramErr);
        LookUp(*block);
    });
}

OSErr FSpCreate(const FSSpec* spec, OSType creator, OSType fileType, SInt16 /*script*/)
{
    return Perform("FSpCreate", [&] {
        const Place place = PlaceOf(spec);
        const FileDescriptor file = OpenAt(place, O_WRONLY | O_CREAT | O_EXCL);
        fchmod(file.Get(), 0600); // whatever bits the process's umask takes away
        Kinds()[place.name] = {fileType, creator};
    });
}

OSErr FSpOpenDF(const FSSpec* spec, SInt8 permission, SInt16* refNum)
{
    return Perform("FSpOpenDF", [&] {
        const bool writable = permission == fsRdWrPerm;
        Require(refNum != nullptr && (writable || permission == fsRdPerm), paramErr);
        // Whatever has taken the file's place must not hold up the caller.
        const int flags = (writable ? O_RDWR : O_RDONLY) | O_NONBLOCK;
        FileDescriptor file = OpenAt(PlaceOf(spec), flags);
        Require(IsPlainFile(file), fnfErr);
        *refNum = toolbox::AddPath({std::move(file), writable});
    });
}

OSErr FSpDelete(const FSSpec* spec)
{
    return Perform("FSpDelete", [&] {
        const Place place = PlaceOf(spec);
        Check(unlinkat(place.folder.Descriptor(), place.name.c_str(), 0), place.folder);
        Kinds().erase(place.name);
    });
}

OSErr FSRead(SInt16 refNum, SInt32* count, void* buffer)
{
    return Perform("FSRead", [&] {
        const SInt32 wanted = TakeCount(count);
        Path& path = toolbox::PathOf(refNum);
        auto* const bytes = static_cast<char*>(buffer);
        TransferAtMark(path, wanted, *count, [&](SInt32 done, size_t left) {
            return pread(path.file.Get(), bytes + done, left, path.mark);
        });
    });
}

OSErr FSWrite(SInt16 refNum, SInt32* count, const void* buffer)
{
    return Perform("FSWrite", [&] {
        const SInt32 wanted = TakeCount(count);
        Path& path = toolbox::PathOf(refNum);
        Require(path.writable, wrPermErr);
        Require(path.mark + wanted <= kMostFileBytes, dskFulErr);
        const auto* const bytes = static_cast<const char*>(buffer);
        TransferAtMark(path, wanted, *count, [&](SInt32 done, size_t left) {
            return pwrite(path.file.Get(), bytes + done, left, path.mark);
        });
    });
}

OSErr FSClose(SInt16 refNum)
{
    return Perform("FSClose", [&] {
        Path path = toolbox::RemovePath(refNum);
        if (path.file.Close() != 0) {
            throw ErrorFromSystem(errno);
        }
    });
}

OSErr GetEOF(SInt16 refNum, SInt32* length)
{
    return Perform("GetEOF", [&] {
        Require(length != nullptr, paramErr);
        struct stat status {
        };
        if (fstat(toolbox::PathOf(refNum).file.Get(), &status) != 0) {
            throw ErrorFromSystem(errno);
        }
        *length = LengthIn(status);
    });
}

OSErr SetFPos(SInt16 refNum, SInt16 mode, SInt32 offset)
{
    return Perform("SetFPos", [&] {
        Path& path = toolbox::PathOf(refNum);
        Require(mode == fsFromStart, paramErr);
        Require(offset >= 0, posErr);
        path.mark = offset;
    });
}

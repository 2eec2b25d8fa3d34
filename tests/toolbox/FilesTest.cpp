// SPDX-License-Identifier: MIT
#include "toolbox/files/Files.h"

#include "tests/toolbox/FailingOperations.h"
#include "toolbox/Errors.h"
#include "toolbox/files/Aliases.h"
#include "toolbox/files/Resources.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;

constexpr OSType kType = FOUR_CHARS('M', 'P', 'E', 'G');
constexpr OSType kCreator = FOUR_CHARS('T', 'V', 'O', 'D');

fs::path TemporaryParent()
{
    const char* const named = std::getenv("TMPDIR");
    return named != nullptr && *named != 0 ? named : "/tmp";
}

class Files : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(noErr, FindFolder(kOnSystemDisk, kTemporaryFolderType, kCreateFolder, &volume_,
                                    &directory_));
    }
    void TearDown() override
    {
        for (const FSSpec& spec : made_) {
            FSpDelete(&spec);
        }
        EXPECT_EQ(openBefore_, CountLiveObjects(kLiveOpenFiles));
    }

    FSSpec Spec(const std::string& name) const
    {
        FSSpec spec{};
        spec.vRefNum = volume_;
        spec.parID = directory_;
        spec.name[0] = static_cast<unsigned char>(name.size());
        std::copy_n(name.begin(), std::min<size_t>(name.size(), 63), spec.name + 1);
        return spec;
    }

    FSSpec Create(const std::string& name)
    {
        const FSSpec spec = Spec(name);
        EXPECT_EQ(noErr, FSpCreate(&spec, kCreator, kType, smSystemScript));
        made_.push_back(spec);
        return spec;
    }

    SInt16 Open(const FSSpec& spec, SInt8 permission = fsRdWrPerm)
    {
        SInt16 refNum = -1;
        EXPECT_EQ(noErr, FSpOpenDF(&spec, permission, &refNum));
        return refNum;
    }

    static void Write(SInt16 refNum, const std::string& bytes)
    {
        auto count = static_cast<SInt32>(bytes.size());
        EXPECT_EQ(noErr, FSWrite(refNum, &count, bytes.data()));
        EXPECT_EQ(static_cast<SInt32>(bytes.size()), count);
    }

    // The result of reading; what was read goes to `bytes`.
    static OSErr Read(SInt16 refNum, SInt32 wanted, std::string& bytes)
    {
        bytes.assign(static_cast<size_t>(std::max(wanted, SInt32{0})), '?');
        const OSErr err = FSRead(refNum, &wanted, bytes.data());
        bytes.resize(static_cast<size_t>(wanted));
        return err;
    }

    CInfoPBRec InfoFor(FSSpec& spec) const
    {
        CInfoPBRec block{};
        block.ioNamePtr = spec.name;
        block.ioVRefNum = spec.vRefNum;
        block.ioDirID = spec.parID;
        return block;
    }

    // Where the files of this process stand, found by one of them.
    fs::path Folder()
    {
        const FSSpec mark = Create("mark " + std::to_string(getpid()));
        const std::string name(mark.name + 1, mark.name + 1 + mark.name[0]);
        fs::path found;
        for (const auto& entry : fs::directory_iterator(TemporaryParent())) {
            if (fs::exists(entry.path() / name)) {
                found = entry.path();
            }
        }
        EXPECT_FALSE(found.empty()) << "no folder holds " << name;
        FSpDelete(&mark);
        return found;
    }

    SInt16 volume_ = 0;
    SInt32 directory_ = 0;

private:
    std::vector<FSSpec> made_;
    SInt32 openBefore_ = CountLiveObjects(kLiveOpenFiles);
};

TEST_F(Files, TheTemporaryFolderIsPrivateAndKeepsItsIdentifier)
{
    SInt16 volume = 0;
    SInt32 directory = 0;
    EXPECT_EQ(noErr, FindFolder(kOnSystemDisk, kTemporaryFolderType, kDontCreateFolder, &volume,
                                &directory));
    EXPECT_EQ(volume_, volume);
    EXPECT_EQ(directory_, directory);
    struct stat status {
    };
    ASSERT_EQ(0, stat(Folder().c_str(), &status));
    EXPECT_EQ(0700U, status.st_mode & 0777U);
}

TEST_F(Files, OtherSpecialFoldersAreNotFound)
{
    SInt16 volume = 0;
    SInt32 directory = 0;
    EXPECT_EQ(fnfErr, FindFolder(kOnSystemDisk, FOUR_CHARS('p', 'r', 'e', 'f'), kCreateFolder,
                                 &volume, &directory));
}

TEST_F(Files, AnUnknownDirectoryHasNoFiles)
{
    FSSpec spec = Spec("movie.mpg");
    spec.parID = 12345;
    CInfoPBRec block = InfoFor(spec);
    SInt16 refNum = -1;
    EXPECT_EQ(dirNFErr, PBGetCatInfoSync(&block));
    EXPECT_EQ(dirNFErr, FSpCreate(&spec, kCreator, kType, smSystemScript));
    EXPECT_EQ(dirNFErr, FSpOpenDF(&spec, fsRdPerm, &refNum));
    EXPECT_EQ(dirNFErr, FSpDelete(&spec));
}

TEST_F(Files, ACreatedFileIsListedWithItsTypeAndCreator)
{
    FSSpec spec = Create("movie.mpg");
    CInfoPBRec block = InfoFor(spec);
    EXPECT_EQ(noErr, PBGetCatInfoSync(&block));
    EXPECT_EQ(kType, block.ioFlFndrType);
    EXPECT_EQ(kCreator, block.ioFlFndrCreator);
    EXPECT_EQ(0, block.ioFlAttrib & kioFlAttribDirMask);
    EXPECT_EQ(0, block.ioFlLgLen);
}

TEST_F(Files, AnUnknownNameIsNotFound)
{
    FSSpec spec = Spec("nothing");
    CInfoPBRec block = InfoFor(spec);
    EXPECT_EQ(fnfErr, PBGetCatInfoSync(&block));
}

TEST_F(Files, AnEmptyNameIsTheDirectoryItself)
{
    FSSpec spec = Spec("");
    CInfoPBRec block = InfoFor(spec);
    EXPECT_EQ(noErr, PBGetCatInfoSync(&block));
    EXPECT_EQ(kioFlAttribDirMask, block.ioFlAttrib);
    block.ioNamePtr = nullptr;
    EXPECT_EQ(noErr, PBGetCatInfoSync(&block));
}

TEST_F(Files, AreLookedUpByNameOnly)
{
    FSSpec spec = Create("movie.mpg");
    CInfoPBRec block = InfoFor(spec);
    block.ioFDirIndex = 1;
    EXPECT_EQ(paramErr, PBGetCatInfoSync(&block));
}

TEST_F(Files, AreCreatedOnceAndForTheirUserOnly)
{
    const FSSpec spec = Create("movie.mpg");
    EXPECT_EQ(dupFNErr, FSpCreate(&spec, kCreator, kType, smSystemScript));
    struct stat status {
    };
    ASSERT_EQ(0, stat((Folder() / "movie.mpg").c_str(), &status));
    EXPECT_EQ(0600U, status.st_mode & 0777U);
}

TEST_F(Files, NamesOfMoreThan31CharactersAreRefused)
{
    const FSSpec longest = Create(std::string(31, 'n'));
    FSSpec tooLong = Spec(std::string(32, 'n'));
    FSSpec overflowing = Spec(std::string(255, 'n')); // its length byte says more than it holds
    CInfoPBRec block = InfoFor(tooLong);
    EXPECT_EQ(bdNamErr, FSpCreate(&tooLong, kCreator, kType, smSystemScript));
    EXPECT_EQ(bdNamErr, FSpDelete(&overflowing));
    EXPECT_EQ(bdNamErr, PBGetCatInfoSync(&block));
    EXPECT_EQ(noErr, FSpDelete(&longest));
}

TEST_F(Files, ANameIsOnlyAName)
{
    for (const std::string name : {"..", ".", "../../etc", "/tmp/x", "a:b"}) {
        const FSSpec spec = Create(name);
        const SInt16 refNum = Open(spec);
        Write(refNum, name);
        EXPECT_EQ(noErr, FSClose(refNum));
    }
    const auto inside = fs::directory_iterator(Folder());
    EXPECT_EQ(5, std::distance(begin(inside), end(inside)));
}

TEST_F(Files, NamesOnDiskAreUnicode)
{
    Create("\x83lan.mpg");
    EXPECT_TRUE(fs::exists(Folder() / "\u00C9lan.mpg"));
}

TEST_F(Files, DeletingForgetsTheFile)
{
    FSSpec spec = Create("movie.mpg");
    EXPECT_EQ(noErr, FSpDelete(&spec));
    EXPECT_EQ(fnfErr, FSpDelete(&spec));
    CInfoPBRec block = InfoFor(spec);
    EXPECT_EQ(fnfErr, PBGetCatInfoSync(&block));
    std::ofstream(Folder() / "movie.mpg") << "another of that name";
    EXPECT_EQ(noErr, PBGetCatInfoSync(&block));
    EXPECT_EQ(0U, block.ioFlFndrType);
    FSpDelete(&spec);
}

TEST_F(Files, OpeningWhatIsNotThereGivesFnfErr)
{
    const FSSpec spec = Spec("nothing");
    SInt16 refNum = -1;
    EXPECT_EQ(fnfErr, FSpOpenDF(&spec, fsRdPerm, &refNum));
    EXPECT_EQ(-1, refNum);
}

TEST_F(Files, AnotherPermissionThanReadOrReadAndWriteIsRefused)
{
    const FSSpec spec = Create("movie.mpg");
    SInt16 refNum = -1;
    EXPECT_EQ(paramErr, FSpOpenDF(&spec, 2, &refNum));
}

TEST_F(Files, WhatOnePathWritesAnotherReads)
{
    const FSSpec spec = Create("movie.mpg");
    const SInt16 writing = Open(spec);
    const SInt16 reading = Open(spec, fsRdPerm);
    EXPECT_GT(writing, 0);
    EXPECT_GT(reading, 0);
    EXPECT_NE(writing, reading);
    Write(writing, "first");
    Write(writing, "second");
    std::string bytes;
    EXPECT_EQ(noErr, Read(reading, 11, bytes));
    EXPECT_EQ("firstsecond", bytes);
    SInt32 length = 0;
    EXPECT_EQ(noErr, GetEOF(reading, &length));
    EXPECT_EQ(11, length);
    EXPECT_EQ(noErr, FSClose(writing));
    EXPECT_EQ(noErr, FSClose(reading));
}

TEST_F(Files, APathForReadingIsNotWritten)
{
    const SInt16 refNum = Open(Create("movie.mpg"), fsRdPerm);
    SInt32 count = 1;
    EXPECT_EQ(wrPermErr, FSWrite(refNum, &count, "x"));
    EXPECT_EQ(0, count);
    FSClose(refNum);
}

TEST_F(Files, AShortReadGivesEofErrAndTheCount)
{
    const SInt16 refNum = Open(Create("movie.mpg"));
    Write(refNum, "bytes");
    SetFPos(refNum, fsFromStart, 2);
    std::string bytes;
    EXPECT_EQ(eofErr, Read(refNum, 100, bytes));
    EXPECT_EQ("tes", bytes);
    EXPECT_EQ(eofErr, Read(refNum, 1, bytes));
    EXPECT_EQ("", bytes);
    FSClose(refNum);
}

TEST_F(Files, ReadingNothingSucceedsEverywhere)
{
    const SInt16 refNum = Open(Create("movie.mpg"));
    std::string bytes;
    EXPECT_EQ(noErr, Read(refNum, 0, bytes));
    FSClose(refNum);
}

TEST_F(Files, ANegativeCountIsAParameterError)
{
    const SInt16 refNum = Open(Create("movie.mpg"));
    SInt32 count = -3;
    EXPECT_EQ(paramErr, FSRead(refNum, &count, nullptr));
    EXPECT_EQ(0, count);
    count = -3;
    EXPECT_EQ(paramErr, FSWrite(refNum, &count, nullptr));
    EXPECT_EQ(0, count);
    FSClose(refNum);
}

TEST_F(Files, TheMarkMayStandPastTheEndButNotBeforeTheStart)
{
    const SInt16 refNum = Open(Create("movie.mpg"));
    Write(refNum, "bytes");
    EXPECT_EQ(noErr, SetFPos(refNum, fsFromStart, 1000));
    std::string bytes;
    EXPECT_EQ(eofErr, Read(refNum, 1, bytes));
    EXPECT_EQ(posErr, SetFPos(refNum, fsFromStart, -1));
    EXPECT_EQ(paramErr, SetFPos(refNum, 2, 0));
    FSClose(refNum);
}

TEST_F(Files, EndAtTwoGigabytesMinusOne)
{
    const SInt16 refNum = Open(Create("movie.mpg"));
    const SInt32 last = std::numeric_limits<SInt32>::max() - 1;
    SetFPos(refNum, fsFromStart, last);
    SInt32 count = 2;
    EXPECT_EQ(dskFulErr, FSWrite(refNum, &count, "xy"));
    EXPECT_EQ(0, count);
    Write(refNum, "x");
    SInt32 length = 0;
    EXPECT_EQ(noErr, GetEOF(refNum, &length));
    EXPECT_EQ(std::numeric_limits<SInt32>::max(), length);
    FSClose(refNum);
}

TEST_F(Files, AClosedPathIsNoPath)
{
    const SInt16 refNum = Open(Create("movie.mpg"));
    EXPECT_EQ(noErr, FSClose(refNum));
    SInt32 number = 0;
    for (const SInt16 none : {refNum, SInt16{0}, SInt16{-1}, SInt16{32767}}) {
        EXPECT_EQ(rfNumErr, FSClose(none));
        EXPECT_EQ(rfNumErr, FSRead(none, &number, nullptr));
        EXPECT_EQ(rfNumErr, FSWrite(none, &number, nullptr));
        EXPECT_EQ(rfNumErr, GetEOF(none, &number));
        EXPECT_EQ(rfNumErr, SetFPos(none, fsFromStart, 0));
    }
}

TEST_F(Files, OpenPathsAreCounted)
{
    const SInt32 before = CountLiveObjects(kLiveOpenFiles);
    const SInt16 refNum = Open(Create("movie.mpg"));
    EXPECT_EQ(before + 1, CountLiveObjects(kLiveOpenFiles));
    FSClose(refNum);
    EXPECT_EQ(before, CountLiveObjects(kLiveOpenFiles));
}

TEST_F(Files, ALinkPlantedAtTheNameIsRefused)
{
    const fs::path victim = Folder() / "victim";
    Create("victim");
    fs::create_symlink(victim, Folder() / "movie.mpg");
    FSSpec spec = Spec("movie.mpg");
    SInt16 refNum = -1;
    EXPECT_EQ(dupFNErr, FSpCreate(&spec, kCreator, kType, smSystemScript));
    EXPECT_EQ(permErr, FSpOpenDF(&spec, fsRdWrPerm, &refNum));
    CInfoPBRec block = InfoFor(spec);
    EXPECT_EQ(noErr, PBGetCatInfoSync(&block)); // the name is taken
    EXPECT_EQ(noErr, FSpDelete(&spec));         // the link goes, its target stays
    EXPECT_TRUE(fs::exists(victim));
}

TEST_F(Files, ADanglingLinkAtTheNameIsRefusedToo)
{
    const fs::path elsewhere = Folder() / "elsewhere";
    fs::create_symlink(elsewhere, Folder() / "movie.mpg");
    const FSSpec spec = Spec("movie.mpg");
    EXPECT_EQ(dupFNErr, FSpCreate(&spec, kCreator, kType, smSystemScript));
    EXPECT_FALSE(fs::exists(elsewhere));
    FSpDelete(&spec);
}

TEST_F(Files, WhatIsNoPlainFileIsNotOpened)
{
    const fs::path pipe = Folder() / "pipe";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    const FSSpec spec = Spec("pipe");
    SInt16 refNum = -1;
    EXPECT_EQ(fnfErr, FSpOpenDF(&spec, fsRdWrPerm, &refNum));
    EXPECT_EQ(fnfErr, FSpOpenDF(&spec, fsRdPerm, &refNum)); // and nobody waits for a writer
    FSpDelete(&spec);
}

// The exit status of a child process that runs `steps`.
template <class Steps>
int StatusOf(Steps steps)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(steps());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(Files, AWriteThatTheVolumeCutsShortTellsHowFarItCame)
{
    const FSSpec spec = Create("movie.mpg");
    const int status = StatusOf([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{10000, 10000};
        setrlimit(RLIMIT_FSIZE, &limit);
        SInt16 refNum = -1;
        FSpOpenDF(&spec, fsRdWrPerm, &refNum);
        const std::string bytes(16384, 'x');
        SInt32 count = 16384;
        const OSErr err = FSWrite(refNum, &count, bytes.data());
        return err == dskFulErr && count == 10000 ? 7 : 1;
    });
    EXPECT_EQ(7, status);
}

TEST_F(Files, NoDescriptorsLeftGivesTmfoErr)
{
    const FSSpec spec = Create("movie.mpg");
    const int status = StatusOf([&] {
        const rlimit limit{3, 3};
        setrlimit(RLIMIT_NOFILE, &limit);
        SInt16 refNum = -1;
        return FSpOpenDF(&spec, fsRdPerm, &refNum) == tmfoErr ? 7 : 1;
    });
    EXPECT_EQ(7, status);
}

TEST_F(Files, AFailureToldByTheObserverComesBeforeAnyEffect)
{
    const FSSpec spec = Spec("movie.mpg");
    {
        const FailingOperations failing(dskFulErr);
        EXPECT_EQ(dskFulErr, FSpCreate(&spec, kCreator, kType, smSystemScript));
    }
    EXPECT_EQ(fnfErr, FSpDelete(&spec));
}

TEST_F(Files, AMinimalAliasHoldsTheSpecification)
{
    const FSSpec spec = Spec("movie.mpg");
    Handle alias = nullptr;
    ASSERT_EQ(noErr, NewAliasMinimal(&spec, &alias));
    EXPECT_EQ(70, GetHandleSize(alias));
    EXPECT_EQ(0, std::memcmp(*alias, &spec, sizeof spec));
    DisposeHandle(alias);
}

TEST_F(Files, NoMemoryForAnAliasGivesMemFullErr)
{
    const FailingOperations failing(memFullErr, "NewHandle");
    const FSSpec spec = Spec("movie.mpg");
    Handle alias = nullptr;
    EXPECT_EQ(memFullErr, NewAliasMinimal(&spec, &alias));
    EXPECT_EQ(nullptr, alias);
}

TEST(ResourceFiles, TheSystemFileIsCurrent)
{
    EXPECT_EQ(0, CurResFile());
}

} // namespace

// SPDX-License-Identifier: MIT
#include "viewer/OutputFile.h"

#include "tests/viewer/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using viewer::OutputFile;

class OutputFileTest : public testing::Test
{
protected:
    static void WriteTo(const std::string& path, const std::string& text)
    {
        OutputFile file(path, "the text");
        file.Write(text.data(), text.size());
        file.Commit();
    }
    static std::string FailureOfWriting(const std::string& path)
    {
        try {
            WriteTo(path, "new");
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
        return "";
    }
    size_t CountFiles() const
    {
        const fs::directory_iterator files(folder.Path("."));
        return static_cast<size_t>(std::distance(begin(files), end(files)));
    }

    TestFolder folder;
};

TEST_F(OutputFileTest, IsThereOnceItIsCommitted)
{
    WriteTo(folder.Path("a"), "new");
    EXPECT_EQ(folder.Read("a"), "new");
    EXPECT_EQ(CountFiles(), 1u);
}

TEST_F(OutputFileTest, WhatStoodThereStaysUntilThen)
{
    const std::string path = folder.Write("a", "old");
    OutputFile file(path, "the text");
    file.Write("new", 3);
    std::fflush(file.Stream());
    EXPECT_EQ(folder.Read("a"), "old");
    file.Commit();
    EXPECT_EQ(folder.Read("a"), "new");
}

TEST_F(OutputFileTest, WithoutACommitNothingHasHappened)
{
    const std::string path = folder.Write("a", "old");
    OutputFile(path, "the text").Write("new", 3);
    EXPECT_EQ(folder.Read("a"), "old");
    EXPECT_EQ(CountFiles(), 1u);
}

TEST_F(OutputFileTest, AFailedWriteNamesPlaceContentsAndReason)
{
    EXPECT_EQ(FailureOfWriting("/dev/full"),
              "/dev/full: the text could not be written: No space left on device");
    const std::string nowhere = folder.Path("no/such/folder");
    EXPECT_EQ(FailureOfWriting(nowhere),
              nowhere + ": the text could not be written: No such file or directory");
    const std::string itself = folder.Path(".");
    EXPECT_EQ(FailureOfWriting(itself), itself + ": the text could not be written: Is a directory");
}

TEST_F(OutputFileTest, ADeviceIsWrittenStraightAndStays)
{
    struct stat before {
    };
    struct stat after {
    };
    ASSERT_EQ(stat("/dev/full", &before), 0);
    FailureOfWriting("/dev/full");
    ASSERT_EQ(stat("/dev/full", &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    WriteTo("/dev/null", "new");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(OutputFileTest, APipeIsWrittenStraight)
{
    const std::string path = folder.Path("fifo");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = folder.Read("fifo"); });
    WriteTo(path, "new");
    reader.join();
    EXPECT_EQ(read, "new");
    EXPECT_TRUE(fs::is_fifo(path));
}

TEST_F(OutputFileTest, ALinkStaysALink)
{
    folder.Write("a", "old");
    fs::create_symlink("a", folder.Path("link"));
    WriteTo(folder.Path("link"), "new");
    EXPECT_EQ(folder.Read("a"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
    fs::create_symlink("b", folder.Path("dangling"));
    WriteTo(folder.Path("dangling"), "new");
    EXPECT_EQ(folder.Read("b"), "new");
}

TEST_F(OutputFileTest, PermissionsAreKept)
{
    const std::string path = folder.Write("a", "old");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
    WriteTo(path, "new");
    EXPECT_EQ(static_cast<int>(fs::status(path).permissions()), 0604);
}

TEST_F(OutputFileTest, ANewFileHasTheUsualPermissions)
{
    const mode_t mask = umask(027);
    WriteTo(folder.Path("a"), "new");
    umask(mask);
    EXPECT_EQ(static_cast<int>(fs::status(folder.Path("a")).permissions()), 0640);
}

TEST_F(OutputFileTest, AFileCanBeRewoundAndADeviceCannot)
{
    OutputFile file(folder.Path("a"), "the text");
    file.Write("xyz", 3);
    EXPECT_TRUE(file.Rewind());
    file.Write("a", 1);
    file.Commit();
    EXPECT_EQ(folder.Read("a"), "ayz");
    EXPECT_FALSE(OutputFile("/dev/null", "the text").Rewind());
}

TEST_F(OutputFileTest, ADashIsStandardOutput)
{
    testing::internal::CaptureStdout();
    std::fputs("first ", stdout);
    WriteTo("-", "second");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "first second");
}

} // namespace

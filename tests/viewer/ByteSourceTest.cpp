// SPDX-License-Identifier: MIT
#include "viewer/ByteSource.h"
#include "tests/viewer/TestFiles.h"
#include "viewer/PipeSource.h"
#include "viewer/TemporaryPlace.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using viewer::ByteSource;
using viewer::FileDescriptor;
using viewer::PipeSource;
using viewer::SourceFailure;

std::string ReadAll(ByteSource& source, SInt32 offset, SInt32 count)
{
    std::string bytes(static_cast<size_t>(count), '\0');
    bytes.resize(static_cast<size_t>(source.Read(bytes.data(), offset, count)));
    return bytes;
}

OSErr ErrorOfOpening(const std::string& location)
{
    try {
        viewer::OpenSource(location);
    } catch (const SourceFailure& failure) {
        return failure.error;
    }
    return noErr;
}

TEST(FileSource, IsThereAtOnce)
{
    const TestFolder folder;
    const auto source = viewer::OpenSource(folder.Write("clip", Pattern(1000)));
    EXPECT_EQ(source->Received(), 1000);
    EXPECT_TRUE(source->IsComplete());
    EXPECT_EQ(source->EstimatedBytes(), 1000);
    EXPECT_EQ(source->DescriptorToWaitOn(), -1);
    EXPECT_EQ(ReadAll(*source, 100, 900), Pattern(1000).substr(100));
}

TEST(FileSource, AMissingFileIsNotFound)
{
    const TestFolder folder;
    EXPECT_EQ(ErrorOfOpening(folder.Path("nothing")), fnfErr);
}

TEST(FileSource, AFolderIsNoObject)
{
    const TestFolder folder;
    EXPECT_EQ(ErrorOfOpening(folder.Path(".")), ioErr);
}

TEST(ByteSource, WhatWouldBeRefusedIsKnownBeforeItIsOpened)
{
    const TestFolder folder;
    const std::string large = folder.Write("large", "");
    ASSERT_EQ(truncate(large.c_str(), off_t{1} << 31), 0);
    EXPECT_FALSE(viewer::MayBeOpened(large));
    EXPECT_FALSE(viewer::MayBeOpened(folder.Path("nothing")));
    EXPECT_FALSE(viewer::MayBeOpened(folder.Path(".")));
    EXPECT_TRUE(viewer::MayBeOpened(folder.Write("clip", Pattern(1000))));
    EXPECT_TRUE(viewer::MayBeOpened("-"));
    EXPECT_TRUE(viewer::MayBeOpened("http://127.0.0.1:1/clip"));
}

TEST(ByteSource, AFifoIsNotOpenedToKnowThatItMayBe)
{
    const TestFolder folder;
    const std::string path = folder.Path("fifo");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_TRUE(viewer::MayBeOpened(path)); // would wait for a writer
}

TEST(FileSource, TheLargestObjectIsOneByteShortOf2GiB)
{
    const TestFolder folder;
    const std::string path = folder.Write("large", "");
    ASSERT_EQ(truncate(path.c_str(), (off_t{1} << 31) - 1), 0);
    EXPECT_EQ(viewer::OpenSource(path)->Received(), INT32_MAX);
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 31), 0);
    try {
        viewer::OpenSource(path);
        FAIL() << "was opened";
    } catch (const SourceFailure& failure) {
        EXPECT_EQ(failure.error, paramErr);
        EXPECT_NE(failure.text.find("2147483648"), std::string::npos);
    }
}

TEST(FileSource, AFileThatBecameShorterFailsAndEndsThere)
{
    const TestFolder folder;
    const std::string path = folder.Write("clip", Pattern(1000));
    const auto source = viewer::OpenSource(path);
    ASSERT_EQ(truncate(path.c_str(), 600), 0);
    EXPECT_EQ(ReadAll(*source, 500, 500), Pattern(1000).substr(500, 100));
    EXPECT_EQ(source->Failure().error, ioErr);
    EXPECT_EQ(source->Received(), 600);
    EXPECT_TRUE(source->IsComplete());
}

class PipeSourceTest : public testing::Test
{
protected:
    PipeSourceTest()
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        writer = FileDescriptor(ends[1]);
        source = std::make_unique<PipeSource>(FileDescriptor(ends[0]));
    }
    void Send(const std::string& bytes) const
    {
        ASSERT_EQ(write(writer.Get(), bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }

    FileDescriptor writer;
    std::unique_ptr<PipeSource> source;
};

TEST_F(PipeSourceTest, GivesWhatHasCome)
{
    Send("hello");
    source->Pump(100);
    EXPECT_EQ(source->Received(), 5);
    EXPECT_FALSE(source->IsComplete());
    EXPECT_EQ(source->EstimatedBytes(), -1);
    EXPECT_EQ(ReadAll(*source, 1, 4), "ello");
}

TEST_F(PipeSourceTest, NamesItsDescriptorWhileItIsBehind)
{
    source->Pump(100);
    EXPECT_GE(source->DescriptorToWaitOn(), 0);
    Send(Pattern(100));
    source->Pump(100);
    EXPECT_EQ(source->DescriptorToWaitOn(), -1);
}

TEST_F(PipeSourceTest, IsCompleteWhenTheWriterCloses)
{
    Send("hello");
    writer = FileDescriptor();
    source->Pump(100);
    EXPECT_TRUE(source->IsComplete());
    EXPECT_EQ(source->EstimatedBytes(), 5);
    EXPECT_EQ(source->DescriptorToWaitOn(), -1);
}

TEST_F(PipeSourceTest, ReadsNotMuchFurtherThanItIsAsked)
{
    fcntl(writer.Get(), F_SETPIPE_SZ, 1 << 20);
    Send(Pattern(300'000));
    source->Pump(1);
    EXPECT_LE(source->Received(), 65536);
    source->Pump(70'000);
    EXPECT_LE(source->Received(), 2 * 65536);
}

TEST_F(PipeSourceTest, WhatWasReadStaysReadable)
{
    const std::string bytes = Pattern(50'000);
    Send(bytes.substr(0, 20'000));
    source->Pump(20'000);
    Send(bytes.substr(20'000));
    source->Pump(50'000);
    EXPECT_EQ(ReadAll(*source, 0, 50'000), bytes);
}

TEST_F(PipeSourceTest, IsClosedWhenNobodyWantsMore)
{
    std::signal(SIGPIPE, SIG_IGN);
    Send("hello");
    source->Pump(100);
    source->StopReceiving();
    EXPECT_EQ(write(writer.Get(), "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    source->Pump(100);
    EXPECT_EQ(source->DescriptorToWaitOn(), -1);
    EXPECT_EQ(ReadAll(*source, 0, 5), "hello");
}

TEST(Fifo, ThatNobodyWritesToYetIsNotAtItsEnd)
{
    const TestFolder folder;
    const std::string path = folder.Path("fifo");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const auto source = viewer::OpenSource(path);
    source->Pump(10);
    EXPECT_FALSE(source->IsComplete());
    EXPECT_GE(source->DescriptorToWaitOn(), 0);
    FileDescriptor writer(open(path.c_str(), O_WRONLY | O_NONBLOCK));
    ASSERT_EQ(write(writer.Get(), "abc", 3), 3);
    source->Pump(10);
    EXPECT_EQ(source->Received(), 3);
    writer = FileDescriptor();
    source->Pump(10);
    EXPECT_TRUE(source->IsComplete());
}

TEST(Stream, IsNotBlamedForAMissingPlaceToKeepIt)
{
    const std::string former = viewer::TemporaryPlace();
    setenv("TMPDIR", "/no/such/place", 1);
    try {
        const PipeSource source{FileDescriptor()};
        ADD_FAILURE() << "was kept";
    } catch (const SourceFailure& failure) {
        EXPECT_EQ(failure.text,
                  "a stream cannot be kept in '/no/such/place': No such file or directory");
    }
    setenv("TMPDIR", former.c_str(), 1);
}

} // namespace

// SPDX-License-Identifier: MIT
//
// The program on objects that are no movies, not all there, or not there.
#include "tests/viewer/EndToEnd.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using testing::HasSubstr;
using testing::IsEmpty;

class NoMovie : public EndToEnd
{
protected:
    void ExpectNoMovieIn(const std::string& contents,
                         const std::string& told = "there is no movie in it (error -2048)")
    {
        for (const std::vector<std::string>& pace :
             {std::vector<std::string>{}, {"--arrive", "100000"}}) {
            std::vector<std::string> arguments = pace;
            arguments.push_back(Write("clip.mpg", contents));
            const ViewerResult result = Run(arguments);
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.Object()["error"], -2048);
            EXPECT_TRUE(result.Object()["first_picture"].is_null());
            EXPECT_THAT(result.err, HasSubstr("clip.mpg: " + told + "\n"));
        }
    }
};

TEST_F(NoMovie, InATextFile)
{
    std::string text;
    while (text.size() < 200'000) {
        text += "This is no movie, whatever its name says.\n";
    }
    ExpectNoMovieIn(text);
}

TEST_F(NoMovie, InAnEmptyFile)
{
    ExpectNoMovieIn("", "it is empty");
}

TEST_F(NoMovie, InRandomBytes)
{
    std::mt19937 random(6);
    std::string bytes(150'000, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() & 0x7F); // no start of an audio frame
    }
    ExpectNoMovieIn(bytes);
}

TEST_F(EndToEnd, ATruncatedMoviePlaysWhatThereIs)
{
    const std::string whole = ReadFile(Clip("mpeg1.mpg"));
    const ViewerResult result =
        Run({"--play", Write("cut.mpg", whole.substr(0, whole.size() / 2))});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_GT(result.Object()["pictures_shown"], 40);
    EXPECT_LT(result.Object()["pictures_shown"], 80);
}

TEST_F(EndToEnd, AMissingFileDoesNotStopTheOthers)
{
    const ViewerResult result = Run({"no-such.mpg", Clip("tiny.mpg")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.Object(0)["error"], -43);
    EXPECT_EQ(result.Object(1)["error"], 0);
    EXPECT_THAT(result.err, HasSubstr("no-such.mpg: No such file"));
}

TEST_F(EndToEnd, WhatNoBundleAcceptsIsTold)
{
    const ViewerResult result = Run({Write("letter.txt", "Dear reader")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.Object()["error"], -50);
    EXPECT_THAT(result.err, HasSubstr("nothing here can show"));
}

// Sends a clip through a FIFO, with a pause in the middle.
class Sender
{
public:
    Sender(std::string path, std::string bytes, size_t pauseAt, int milliseconds)
        : thread_([=] {
              const int fifo = open(path.c_str(), O_WRONLY);
              Send(fifo, bytes.substr(0, pauseAt));
              std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
              Send(fifo, bytes.substr(pauseAt));
              close(fifo);
          })
    {
    }
    ~Sender() { thread_.join(); }

private:
    static void Send(int fifo, const std::string& bytes)
    {
        for (size_t sent = 0; sent < bytes.size();) {
            const ssize_t put = write(fifo, bytes.data() + sent, bytes.size() - sent);
            if (put <= 0) {
                return;
            }
            sent += static_cast<size_t>(put);
        }
    }
    std::thread thread_;
};

TEST_F(EndToEnd, AWrongExtensionDoesNoHarm)
{
    for (const char* const name : {"clip.jpg", "clip.png", "clip.gif", "clip.txt"}) {
        const ViewerResult result = Run({Write(name, ReadFile(Clip("tiny.mpg")))});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.Object()["plugin"], "VornMovie") << name;
    }
}

TEST_F(EndToEnd, AFileThatMayNotGrowIsToldLikeAFullDisk)
{
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small = {1024, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const ViewerResult result =
        RunVornview({"--headless", "--snapshot", viewer.Folder().Path("page.png"), "--size",
                     "800x600", Clip("tiny.mpg")},
                    viewer.Folder().Path(""));
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("page.png"));
    EXPECT_THAT(result.err, HasSubstr("File too large"));
}

TEST_F(EndToEnd, AFifoThatStallsPlaysToItsEnd)
{
    const std::string path = viewer.Folder().Path("stream.mpg");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const Sender sender(path, ReadFile(Clip("mpeg1.mpg")), 200'000, 700);
    const ViewerResult result = Run({"--play", path});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object()["pictures_shown"], PicturesOf("mpeg1.mpg"));
    EXPECT_TRUE(result.wav == SoundOf("mpeg1.mpg"));
}

TEST_F(EndToEnd, AnInterruptEndsThePageInGoodOrder)
{
    const std::string path = viewer.Folder().Path("stream.mpg");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int fifo = open(path.c_str(), O_RDWR); // a writer that sends nothing
    const ViewerResult result = viewer.RunAndInterrupt({Clip("tiny.mpg"), path}, 700);
    close(fifo);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.Object(0)["pictures_shown"], 1);
    EXPECT_EQ(result.Object(1)["bytes"], 0);
    EXPECT_FALSE(result.snapshot.empty());
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

TEST_F(EndToEnd, AHangUpDoesToo)
{
    const std::string path = viewer.Folder().Path("stream.mpg");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int fifo = open(path.c_str(), O_RDWR);
    const ViewerResult result = viewer.RunAndInterrupt({Clip("tiny.mpg"), path}, 700, SIGHUP);
    close(fifo);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.Object(0)["pictures_shown"], 1);
    EXPECT_FALSE(result.snapshot.empty());
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

TEST_F(EndToEnd, AnUnusablePlaceForTemporaryFilesIsNotBlamedOnTheMovie)
{
    const ViewerResult result = RunVornview({"--headless", Clip("tiny.mpg")}, "/no/such/place");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("'/no/such/place' (TMPDIR) cannot be used"));
    EXPECT_THAT(result.err, testing::Not(HasSubstr("tiny.mpg")));
}

} // namespace

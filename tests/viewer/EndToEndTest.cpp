// SPDX-License-Identifier: MIT
//
// The program on the movie bundle, with clips made by the ffmpeg program.
#include "tests/viewer/RunningViewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <random>
#include <sstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string Clip(const std::string& name)
{
    return std::string(VORN_CLIPS) + "/" + name;
}

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What a plain decode gives: the sound, and the number of pictures.
std::string SoundOf(const std::string& clip)
{
    return ReadFile(Clip(clip) + ".pcm");
}
int PicturesOf(const std::string& clip)
{
    const std::string text = ReadFile(Clip(clip) + ".pictures");
    return text.empty() ? 0 : std::stoi(text);
}

class EndToEnd : public testing::Test
{
protected:
    ViewerResult Run(const std::vector<std::string>& arguments) { return viewer.Run(arguments); }
    std::string Write(const std::string& name, const std::string& contents) const
    {
        return viewer.Folder().Write(name, contents);
    }

    RunningViewer viewer;
};

class EveryClip : public EndToEnd, public testing::WithParamInterface<const char*>
{
};

TEST_P(EveryClip, PlaysEveryPictureAndEverySample)
{
    const ViewerResult result = Run({"--play", Clip(GetParam())});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object()["error"], 0);
    EXPECT_EQ(result.Object()["complete"], true);
    EXPECT_EQ(result.Object()["pictures_shown"], PicturesOf(GetParam()));
    EXPECT_EQ(result.Object()["pictures_dropped"], 0);
    EXPECT_TRUE(result.wav == SoundOf(GetParam())) << result.wav.size() << " bytes of sound";
    EXPECT_EQ(result.err, "");
}

TEST_P(EveryClip, PlaysTheSameAtEveryRateOfArrival)
{
    const ViewerResult atOnce = Run({"--play", Clip(GetParam())});
    for (const char* rate : {"30000", "262144", "5000000"}) {
        const ViewerResult slow = Run({"--play", "--arrive", rate, Clip(GetParam())});
        EXPECT_EQ(slow.status, 0) << rate;
        EXPECT_EQ(slow.Object()["pictures_shown"], atOnce.Object()["pictures_shown"]) << rate;
        EXPECT_TRUE(slow.wav == atOnce.wav) << rate;
        EXPECT_TRUE(slow.snapshot == atOnce.snapshot) << rate;
    }
}

INSTANTIATE_TEST_SUITE_P(EndToEnd, EveryClip,
                         testing::Values("mpeg1.mpg", "mpeg2.mpg", "silent.mpg", "early.mpg",
                                         "tiny.mpg", "video.m1v", "video.m2v", "sound.mp2",
                                         "sound.mp3"),
                         [](const auto& each) {
                             std::string name = each.param;
                             name[name.find('.')] = '_';
                             return name;
                         });

TEST_F(EndToEnd, TheFirstPictureIsThereBy82KiB)
{
    for (const char* rate : {"50000", "262144", "1048576", "100000000"}) {
        const ViewerResult result = Run({"--arrive", rate, Clip("mpeg1.mpg")});
        const auto& first = result.Object()["first_picture"];
        ASSERT_TRUE(first.is_object()) << rate;
        EXPECT_GT(first["bytes"], 65536) << rate;
        EXPECT_LE(first["bytes"], 82 * 1024) << rate;
    }
}

TEST_F(EndToEnd, WithoutAClickTheFirstPictureStands)
{
    const ViewerResult result = Run({Clip("mpeg1.mpg")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.Object()["pictures_shown"], 1);
    EXPECT_EQ(result.Object()["sound_samples"], 0);
    EXPECT_EQ(result.report["seconds"], 0.0);
}

TEST_F(EndToEnd, TheRectangleHoldsPictureControllerAndASpareRow)
{
    const ViewerResult result = Run({Clip("mpeg1.mpg")});
    EXPECT_EQ(result.Object()["rect"], nlohmann::json({0, 0, 240 + 16 + 1, 352}));
}

TEST_F(EndToEnd, AClickOnThePlayButtonPlays)
{
    const ViewerResult result = Run({"--click", "24,248@0.5", Clip("mpeg1.mpg")});
    EXPECT_EQ(result.Object()["pictures_shown"], PicturesOf("mpeg1.mpg"));
    EXPECT_NEAR(result.report["seconds"].get<double>(), 4.5, 0.2);
}

TEST_F(EndToEnd, TheSpaceKeyPlaysAndPauses)
{
    const ViewerResult result =
        Run({"--key", "space@0.5", "--key", "space@1.5", "--until", "4", Clip("mpeg1.mpg")});
    EXPECT_NEAR(result.Object()["pictures_shown"].get<int>(), 30, 2);
}

TEST_F(EndToEnd, ASnapshotShowsTheMovieAtItsTime)
{
    const std::string early = viewer.Folder().Path("early.png");
    const ViewerResult result =
        Run({"--play", "--at", "1", "--snapshot", early, Clip("mpeg1.mpg")});
    EXPECT_EQ(result.status, 0);
    EXPECT_FALSE(ReadFile(early).empty());
    EXPECT_FALSE(ReadFile(early) == result.snapshot);
}

TEST_F(EndToEnd, StandardOutputHoldsTheBundlesLinesOnly)
{
    const ViewerResult result = Run({Clip("tiny.mpg"), Clip("sound.mp3")});
    std::istringstream lines(result.out);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_THAT(line, testing::AnyOf(StartsWith("EnsureDataHandlerRegistered(): "),
                                         StartsWith("RegisterComponent returned ")));
    }
    EXPECT_GT(count, 0);
}

TEST_F(EndToEnd, TwentyMoviesPlayAtOnce)
{
    std::vector<std::string> arguments = {"--play", "--arrive", "200000"};
    for (int i = 0; i < 10; ++i) {
        arguments.push_back(Clip("silent.mpg"));
        arguments.push_back(Clip("video.m1v"));
    }
    const ViewerResult result = Run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    for (size_t i = 0; i < 20; i += 2) {
        EXPECT_EQ(result.Object(i)["pictures_shown"], PicturesOf("silent.mpg")) << i;
        EXPECT_EQ(result.Object(i + 1)["pictures_shown"], PicturesOf("video.m1v")) << i + 1;
    }
}

class NoMovie : public EndToEnd
{
protected:
    void ExpectNoMovieIn(const std::string& contents)
    {
        for (const std::vector<std::string>& pace :
             {std::vector<std::string>{}, {"--arrive", "100000"}}) {
            std::vector<std::string> arguments = pace;
            arguments.push_back(Write("clip.mpg", contents));
            const ViewerResult result = Run(arguments);
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.Object()["error"], -2048);
            EXPECT_TRUE(result.Object()["first_picture"].is_null());
            EXPECT_THAT(result.err, HasSubstr("clip.mpg: there is no movie in it (error -2048)"));
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
    ExpectNoMovieIn("");
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

TEST_F(EndToEnd, NoFileIsLeftBehind)
{
    Run({"--play", Clip("mpeg1.mpg"), Clip("sound.mp3")});
    Run({"--arrive", "50000", "--until", "2", Clip("mpeg1.mpg")});
    Run({Write("clip.mpg", "no movie")});
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

TEST_F(EndToEnd, UntilEndsTheClock)
{
    const ViewerResult result = Run({"--play", "--until", "1.25", Clip("mpeg1.mpg")});
    EXPECT_DOUBLE_EQ(result.report["seconds"], 1.25);
    EXPECT_NEAR(result.Object()["pictures_shown"].get<int>(), 38, 2);
}

TEST(CommandLine, MakesItsStatusAndTextsPlain)
{
    const ViewerResult none = RunVornview({}, "/tmp");
    EXPECT_EQ(none.status, 2);
    EXPECT_THAT(none.err, HasSubstr("no object"));
    const ViewerResult wrong = RunVornview({"--headless", "--size", "8", "a"}, "/tmp");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.err, HasSubstr("--size: '8'"));
    const ViewerResult help = RunVornview({"--help"}, "/tmp");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr("--headless"));
}

TEST(CommandLine, ListsTheMovieBundle)
{
    const ViewerResult result = RunVornview({"--list-plugins"}, "/tmp");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("VornMovie"));
    EXPECT_THAT(result.out, HasSubstr("video/mpeg"));
}

} // namespace

// SPDX-License-Identifier: MIT
//
// The program's temporary files: when it is killed, when there are two of it, and when their place
// fails.
#include "tests/viewer/EndToEnd.h"
#include "tests/viewer/ImageFiles.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

class TemporaryFiles : public EndToEnd
{
protected:
    // A stream that sends nothing by itself.
    std::string MakeStream(const std::string& name) const
    {
        const std::string path = viewer.Folder().Path(name);
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return path;
    }
    std::string Temporary() const { return viewer.Folder().Path("tmp"); }
};

TEST_F(TemporaryFiles, OfAKilledRunAreRemovedByTheNextOne)
{
    const std::string stream = MakeStream("stream.mpg");
    const int fifo = open(stream.c_str(), O_RDWR); // a writer that sends nothing
    fs::create_directories(Temporary());
    const auto killOnceItHasFiles = [this](pid_t program) {
        while (viewer.LeftBehind().empty()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        kill(program, SIGKILL);
    };
    RunVornviewAnd(killOnceItHasFiles, {"--headless", Clip("tiny.mpg"), stream}, Temporary());
    close(fifo);
    EXPECT_THAT(viewer.LeftBehind(), Not(IsEmpty()));
    EXPECT_EQ(Run({Clip("tiny.mpg")}).status, 0);
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

TEST_F(TemporaryFiles, OfRunsAtTheSameTimeAndPlaceDoNotMeet)
{
    fs::create_directories(Temporary());
    std::vector<std::thread> runs;
    for (const std::string name : {"a", "b", "c"}) {
        runs.emplace_back([this, name] {
            RunVornview({"--headless", "--play", "--report", viewer.Folder().Path(name + ".json"),
                         "--wav", viewer.Folder().Path(name + ".wav"), Clip("mpeg1.mpg")},
                        Temporary());
        });
    }
    for (std::thread& run : runs) {
        run.join();
    }
    for (const std::string name : {"a", "b", "c"}) {
        const auto report = nlohmann::json::parse(viewer.Folder().Read(name + ".json"));
        EXPECT_EQ(report["objects"][0]["error"], 0);
        EXPECT_EQ(report["objects"][0]["pictures_shown"], PicturesOf("mpeg1.mpg"));
        EXPECT_THAT(viewer.Folder().Read(name + ".wav"), testing::EndsWith(SoundOf("mpeg1.mpg")));
    }
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

// Nothing the objects need is lost but what the disk has no room for.
TEST_F(TemporaryFiles, WithoutRoomFailTheirObjectAlone)
{
    fs::create_directories(Temporary());
    const std::string report = viewer.Folder().Path("report.json");
    const std::string picture = Write("picture.png", MakePng(40, 30));
    ViewerResult result;
    {
        const FullDisk full(300'000);
        result = RunVornview({"--headless", "--play", "--report", report, Clip("mpeg1.mpg"),
                              picture, Clip("tiny.mpg")},
                             Temporary());
    }
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("mpeg1.mpg: the disk is full (error -34)"));
    const auto objects = nlohmann::json::parse(viewer.Folder().Read("report.json"))["objects"];
    EXPECT_EQ(objects[0]["error"], -34);
    EXPECT_EQ(objects[1]["error"], 0);
    EXPECT_EQ(objects[2]["error"], 0);
    EXPECT_EQ(objects[2]["pictures_shown"], PicturesOf("tiny.mpg"));
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

// Sends a movie; removes the folder of the program's temporary files when much of it is there;
// goes on with the rest, and with another movie.
class Remover
{
public:
    Remover(std::string first, std::string second, std::string temporary)
        : thread_([=] {
              const std::string movie = ReadFile(Clip("mpeg1.mpg"));
              constexpr size_t kFirstPart = 200'000;
              const int stream = open(first.c_str(), O_WRONLY);
              Send(stream, movie.substr(0, kFirstPart));
              RemoveOnceItHolds(temporary, kFirstPart / 2);
              Send(stream, movie.substr(kFirstPart));
              close(stream);
              const int other = open(second.c_str(), O_WRONLY);
              Send(other, ReadFile(Clip("tiny.mpg")));
              close(other);
          })
    {
    }
    ~Remover() { thread_.join(); }

private:
    static void Send(int stream, const std::string& bytes)
    {
        for (size_t sent = 0; sent < bytes.size();) {
            const ssize_t put = write(stream, bytes.data() + sent, bytes.size() - sent);
            if (put <= 0) {
                return;
            }
            sent += static_cast<size_t>(put);
        }
    }

    static void RemoveOnceItHolds(const std::string& temporary, size_t bytes)
    {
        const auto isLarge = [bytes](const fs::directory_entry& entry) {
            return entry.is_regular_file() && entry.file_size() >= bytes;
        };
        while (std::none_of(fs::recursive_directory_iterator(temporary), {}, isLarge)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        for (const auto& entry : fs::directory_iterator(temporary)) {
            fs::remove_all(entry.path());
        }
    }

    std::thread thread_;
};

TEST_F(TemporaryFiles, ThatVanishWhileOneLoadsFailOnlyWhatNeedsNewOnes)
{
    const std::string first = MakeStream("first.mpg");
    const std::string second = MakeStream("second.mpg");
    fs::create_directories(Temporary());
    const Remover remover(first, second, Temporary());
    const ViewerResult result =
        Run({"--play", first, second, Write("picture.png", MakePng(40, 30))});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.Object(0)["error"], 0);
    EXPECT_EQ(result.Object(0)["pictures_shown"], PicturesOf("mpeg1.mpg"));
    EXPECT_TRUE(result.wav == SoundOf("mpeg1.mpg"));
    EXPECT_EQ(result.Object(1)["error"], -120);
    EXPECT_THAT(result.err,
                HasSubstr("second.mpg: the folder for temporary files is gone (error -120)"));
    EXPECT_EQ(result.Object(2)["error"], 0);
}

} // namespace

// SPDX-License-Identifier: MIT
//
// The program on the movie bundle, with clips made by the ffmpeg program.
#include "tests/viewer/EndToEnd.h"
#include "tests/viewer/ImageFiles.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <sstream>

namespace
{

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

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

TEST_F(EndToEnd, NoFileIsLeftBehind)
{
    Run({"--play", Clip("mpeg1.mpg"), Clip("sound.mp3")});
    Run({"--arrive", "50000", "--until", "2", Clip("mpeg1.mpg")});
    Run({Write("clip.mpg", "no movie")});
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

TEST_F(EndToEnd, AReportThatCannotBeWrittenIsTold)
{
    const ViewerResult result = Run({"--report", "/no/such/folder.json", Clip("tiny.mpg")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("/no/such/folder.json: the report could not be written: "
                                      "No such file or directory"));
}

TEST_F(EndToEnd, AFolderWithoutAPluginIsTold)
{
    const ViewerResult result = Run({"--plugins", viewer.Folder().Path("."), Clip("tiny.mpg")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("there is no plug-in in '"));
}

TEST_F(EndToEnd, ASoundFileOfNothingIsTold)
{
    const std::string wav = viewer.Folder().Path("a.wav");
    const ViewerResult silent = Run({"--wav", wav, Clip("sound.mp3")});
    EXPECT_THAT(silent.err, HasSubstr("a.wav: nothing sounded; --play clicks the play buttons"));
    const ViewerResult played = Run({"--play", "--wav", wav, Clip("sound.mp3")});
    EXPECT_EQ(played.err, "");
    const ViewerResult image = Run({"--wav", wav, Write("a.gif", MakeAnimation(3, 2, {1}, 10))});
    EXPECT_EQ(image.err, "");
}

TEST_F(EndToEnd, AFileUrlIsItsFile)
{
    const std::string path = Write("a clip.mpg", ReadFile(Clip("tiny.mpg")));
    const std::string url = "file://" + path.substr(0, path.rfind('/')) + "/a%20clip.mpg";
    const ViewerResult result = Run({url});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object(0)["name"], path);
}

TEST_F(EndToEnd, StandardInputIsAnObject)
{
    const std::string command = std::string("cat ") + Clip("mpeg1.mpg") + " | " + VORNVIEW +
                                " --headless --play --report " + viewer.Folder().Path("r.json") +
                                " - > /dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const nlohmann::json report = nlohmann::json::parse(viewer.Folder().Read("r.json"));
    EXPECT_EQ(report["objects"][0]["name"], "-");
    EXPECT_EQ(report["objects"][0]["pictures_shown"], PicturesOf("mpeg1.mpg"));
}

TEST_F(EndToEnd, AnExtensionThatIsWrongOrMissingDoesNotMatter)
{
    const ViewerResult result = Run({"--play", Write("sound.txt", ReadFile(Clip("sound.mp3"))),
                                     Write("clip", ReadFile(Clip("tiny.mpg"))),
                                     Write("x.mp3", ReadFile(Clip("early.mpg")))});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object(0)["type"], "audio/mpeg");
    EXPECT_EQ(result.Object(1)["type"], "video/mpeg");
    EXPECT_EQ(result.Object(2)["type"], "video/mpeg");
    EXPECT_EQ(result.Object(1)["pictures_shown"], PicturesOf("tiny.mpg"));
}

TEST_F(EndToEnd, ASoundOnANarrowPageCanBePlayed)
{
    const ViewerResult result = Run({"--size", "100x60", "--play", Clip("sound.mp3")});
    EXPECT_EQ(result.Object()["rect"], nlohmann::json({0, 0, 17, 240}));
    EXPECT_TRUE(result.wav == SoundOf("sound.mp3"));
}

TEST_F(EndToEnd, AnObjectIsNotOverwritten)
{
    const std::string clip = Write("clip.mpg", ReadFile(Clip("tiny.mpg")));
    const ViewerResult result = Run({clip, "--snapshot", clip});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(ReadFile(clip) == ReadFile(Clip("tiny.mpg")));
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
    EXPECT_EQ(RunVornview({"-h"}, "/tmp").out, help.out);
    EXPECT_THAT(RunVornview({"--version"}, "/tmp").out,
                testing::MatchesRegex("vornview [0-9.]+\n"));
}

TEST(CommandLine, WithoutHeadlessThePageRunsAndTheMissingWindowIsTold)
{
    const ViewerResult result = RunVornview({Clip("tiny.mpg")}, "/tmp");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("the page runs without one"));
    EXPECT_EQ(RunVornview({"--headless", Clip("tiny.mpg")}, "/tmp").err, "");
}

TEST(CommandLine, ListsTheMovieBundle)
{
    const ViewerResult result = RunVornview({"--list-plugins"}, "/tmp");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("VornMovie"));
    EXPECT_THAT(result.out, HasSubstr("video/mpeg"));
}

} // namespace

// SPDX-License-Identifier: MIT
//
// scripts/view, with a viewer that only writes down how it was called.
#include "tests/viewer/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

namespace
{

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class ViewScript : public testing::Test
{
protected:
    ViewScript()
    {
        fs::create_directories(top.Path("scripts"));
        fs::create_directories(top.Path("build/release/bin"));
        fs::create_directories(top.Path("build/samples"));
        fs::copy_file(SCRIPTS "/view", top.Path("scripts/view"));
        WriteProgram("scripts/build", "true");
        MakeViewer(0, true);
    }
    void MakeViewer(int status, bool writes, const std::string& report = "")
    {
        const std::string write = "{ touch \"$top/build/view/page.png\"; echo '" + report +
                                  "' > \"$top/build/view/report.json\"; }\n";
        WriteProgram("build/release/bin/vornview",
                     "top=" + top.Path("") + "\necho \"$*\" > \"$top/called\"\n" +
                         "[ -d \"$top/build/view\" ] && " + (writes ? write : "true\n") + "exit " +
                         std::to_string(status));
    }
    void MakeViewerWithSound(int bytes)
    {
        constexpr int kWavHeader = 44;
        WriteProgram("build/release/bin/vornview", "head -c " + std::to_string(kWavHeader + bytes) +
                                                       " /dev/zero > " +
                                                       top.Path("build/view/sound.wav"));
    }
    int View(const std::string& arguments, const std::string& display = "")
    {
        const std::string command = "WAYLAND_DISPLAY= DISPLAY=" + display + " " +
                                    top.Path("scripts/view") + " " + arguments + " 2> " +
                                    top.Path("told");
        const int status = std::system(command.c_str());
        told = top.Read("told");
        called = top.Read("called");
        return WEXITSTATUS(status);
    }

    void WriteProgram(const std::string& name, const std::string& lines)
    {
        fs::permissions(top.Write(name, "#!/bin/sh\n" + lines + "\n"), fs::perms::owner_all);
    }

    TestFolder top;
    std::string told;
    std::string called;
};

TEST_F(ViewScript, WithoutArgumentsPlaysTheSampleIntoFiles)
{
    EXPECT_EQ(View(""), 0);
    EXPECT_THAT(called, HasSubstr("--headless --play --at 3 --snapshot "));
    EXPECT_THAT(called, EndsWith("/samples/mpeg1.mpg\n"));
    EXPECT_THAT(told, HasSubstr("into these files"));
    EXPECT_THAT(told, HasSubstr("page.png"));
    EXPECT_THAT(told, Not(HasSubstr("sound.wav"))); // this viewer wrote none
}

TEST_F(ViewScript, TheSampleIsMadeOnceWithWhatThatTakes)
{
    const std::string log = top.Path("made");
    fs::remove(top.Path("build/samples"));
    WriteProgram("scripts/setup", "echo setup \"$*\" >> " + log);
    WriteProgram("scripts/make-clips", "echo clips >> " + log + "; mkdir \"$1\"");
    EXPECT_EQ(View(""), 0);
    EXPECT_EQ(View(""), 0);
    EXPECT_EQ(top.Read("made"), "setup --clips\nclips\n");
}

TEST_F(ViewScript, SoundIsToldOfWhereThereIsSome)
{
    MakeViewerWithSound(4);
    View("clip.mpg");
    EXPECT_THAT(told, HasSubstr("sound.wav"));
    EXPECT_TRUE(fs::exists(top.Path("build/view/sound.wav")));
}

TEST_F(ViewScript, ASilentPageLeavesNoSoundFile)
{
    MakeViewerWithSound(0);
    View("picture.png");
    EXPECT_THAT(told, Not(HasSubstr("sound.wav")));
    EXPECT_FALSE(fs::exists(top.Path("build/view/sound.wav")));
}

TEST_F(ViewScript, WithADisplayTheSampleIsPlayedInAWindow)
{
    EXPECT_EQ(View("", ":1"), 0);
    EXPECT_EQ(called, "--play " + top.Path("build/samples/mpeg1.mpg") + "\n");
    EXPECT_EQ(told, "");
}

TEST_F(ViewScript, WithADisplayObjectsAreShownInAWindow)
{
    View("--size 640x480 clip.mpg", ":1");
    EXPECT_EQ(called, "--play --size 640x480 clip.mpg\n");
}

TEST_F(ViewScript, OptionsThatDoNotSayWhereToSeeThePageGoAlong)
{
    EXPECT_EQ(View("--type video/mpeg -"), 0);
    EXPECT_THAT(called, HasSubstr("--headless --play"));
    EXPECT_THAT(called, EndsWith(" --type video/mpeg -\n"));
}

TEST_F(ViewScript, WithAnEndTheSnapshotIsOfTheEnd)
{
    View("--until 1 clip.mpg");
    EXPECT_THAT(called, Not(HasSubstr("--at")));
    EXPECT_THAT(told, HasSubstr("the page at its end"));
}

TEST_F(ViewScript, OptionsThatSaySoGoToTheViewerAlone)
{
    for (const char* arguments : {"--snapshot a.png clip.mpg", "--report=r.json clip.mpg", "--help",
                                  "-h", "--version", "--list-plugins", "--headless clip.mpg"}) {
        EXPECT_EQ(View(arguments), 0);
        EXPECT_EQ(called, std::string(arguments) + "\n");
        EXPECT_EQ(told, "");
    }
}

TEST_F(ViewScript, TellsWhereThatIsWhichCouldBeShown)
{
    MakeViewer(1, true, R"({"objects": [{"first_picture": {"seconds": 0.0}}]})");
    EXPECT_EQ(View("good.mpg bad.mpg"), 1);
    EXPECT_THAT(told, HasSubstr("Not all of it could be shown"));
    EXPECT_THAT(told, HasSubstr("page.png"));
}

TEST_F(ViewScript, OffersNoEmptyPageWhereNothingCouldBeShown)
{
    MakeViewer(1, true, R"({"objects": [{"error": -50}]})");
    EXPECT_EQ(View("bad.mpg"), 1);
    EXPECT_EQ(told, "");
}

TEST_F(ViewScript, AfterAFailureItClaimsNoSuccess)
{
    MakeViewer(1, false);
    EXPECT_EQ(View("clip.mpg"), 1);
    EXPECT_EQ(told, "");
    MakeViewer(2, false);
    EXPECT_EQ(View("--size x clip.mpg"), 2);
    EXPECT_EQ(told, "");
}

} // namespace

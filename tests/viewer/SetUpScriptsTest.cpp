// SPDX-License-Identifier: MIT
//
// scripts/setup and scripts/build, with programs that only write down how they were called.
#include "tests/viewer/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class SetUpScripts : public testing::Test
{
protected:
    SetUpScripts()
    {
        fs::create_directories(top.Path("scripts"));
        fs::create_directories(top.Path("programs"));
        for (const char* script : {"setup", "build"}) {
            fs::copy_file(std::string(SCRIPTS) + "/" + script, top.Path("scripts/") + script);
        }
        WriteProgram("cmake", "echo cmake version 3.25.1");
        WriteProgram("sudo", "exec \"$@\"");
        WriteProgram("apt-get", "echo \"$*\" >> " + top.Path("called"));
    }
    void WriteProgram(const std::string& name, const std::string& lines)
    {
        fs::permissions(top.Write("programs/" + name, "#!/bin/sh\n" + lines + "\n"),
                        fs::perms::owner_all);
    }
    int Run(const std::string& command)
    {
        const std::string line = "PATH=" + top.Path("programs") + ":$PATH " + top.Path("scripts/") +
                                 command + " 2> " + top.Path("told");
        const int status = std::system(line.c_str());
        told = top.Read("told");
        called = top.Read("called");
        return WEXITSTATUS(status);
    }

    TestFolder top;
    std::string told;
    std::string called;
};

// A machine on which nothing is installed.
class BareMachine : public SetUpScripts
{
protected:
    BareMachine() { WriteProgram("dpkg-query", "exit 1"); }
};

TEST_F(BareMachine, TestingTakesEverything)
{
    EXPECT_EQ(Run("setup"), 0);
    EXPECT_THAT(called, HasSubstr(" libavcodec-dev "));
    EXPECT_THAT(called, HasSubstr(" ffmpeg "));
    EXPECT_THAT(called, HasSubstr(" libgtest-dev "));
    EXPECT_THAT(called, Not(HasSubstr("powerpc")));
}

TEST_F(BareMachine, ViewingTakesNothingThatOnlyTestsNeed)
{
    EXPECT_EQ(Run("setup --view"), 0);
    EXPECT_THAT(called, HasSubstr(" libavcodec-dev "));
    for (const char* package : {"ffmpeg", "gtest", "gmock", "benchmark", "xvfb", "imagemagick"}) {
        EXPECT_THAT(called, Not(HasSubstr(package)));
    }
}

TEST_F(BareMachine, TheSampleClipsTakeTheProgramThatMakesThem)
{
    EXPECT_EQ(Run("setup --clips"), 0);
    EXPECT_THAT(called, HasSubstr(" ffmpeg"));
    EXPECT_THAT(called, Not(HasSubstr("gtest")));
}

TEST_F(BareMachine, AnotherMachineTakesItsCompilerToo)
{
    EXPECT_EQ(Run("setup --ppc32"), 0);
    EXPECT_THAT(called, HasSubstr(" libgtest-dev "));
    EXPECT_THAT(called, HasSubstr(" g++-powerpc-linux-gnu "));
}

// A folder in which something was built.
class BuildScript : public SetUpScripts
{
protected:
    BuildScript()
    {
        WriteProgram("../scripts/setup", "echo setup \"$*\" >> " + top.Path("called"));
        for (const char* preset : {"release", "dev"}) {
            fs::create_directories(top.Path("build/") + preset);
            top.Write(std::string("build/") + preset + "/build.ninja", "");
        }
        WriteNinja("ninja: no work to do.");
    }
    void WriteNinja(const std::string& answer)
    {
        WriteProgram("ninja",
                     "echo \"" + answer + "\"\necho ninja \"$*\" >> " + top.Path("called"));
    }
};

TEST_F(BuildScript, SaysNothingWhereNothingIsToBeDone)
{
    EXPECT_EQ(Run("build release"), 0);
    EXPECT_EQ(told, "");
}

TEST_F(BuildScript, SaysWhatItBuildsWhereSomethingIsToBeDone)
{
    WriteNinja("[1/2] Building");
    EXPECT_EQ(Run("build release"), 0);
    EXPECT_THAT(told, HasSubstr("Building build/release\n"));
    EXPECT_THAT(called, HasSubstr("ninja -C build/release --quiet\n"));
}

TEST_F(BuildScript, OnlyTestsTakeWhatTestsNeed)
{
    Run("build release");
    EXPECT_THAT(called, HasSubstr("setup --view\n"));
    Run("build dev");
    EXPECT_THAT(called, HasSubstr("setup \n"));
}

} // namespace

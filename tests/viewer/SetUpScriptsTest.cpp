// SPDX-License-Identifier: MIT
//
// scripts/setup, scripts/codecs and scripts/build, with programs that only write down how they were
// called.
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
        for (const char* script : {"setup", "codecs", "build"}) {
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

class CodecsScript : public SetUpScripts
{
protected:
    CodecsScript()
    {
        WriteProgram("dpkg-query", "echo 5.1");
        WriteProgram("apt-get", "echo \"$*\" >> " + top.Path("called") +
                                    "\ncase \"$*\" in *source*) mkdir ffmpeg-5.1 && "
                                    "ln -s ../../../../programs/configure ffmpeg-5.1 ;; esac");
        WriteProgram("configure", "echo configure \"$*\" >> " + top.Path("called"));
        WriteProgram("make", "echo make \"$*\" >> " + top.Path("called"));
    }
    bool HasBuilt() const { return fs::exists(top.Path("build/codecs/built")); }
    // What it does when it runs once more.
    std::string CallsOfNextRun()
    {
        fs::remove(top.Path("called"));
        EXPECT_EQ(Run("codecs"), 0);
        return called;
    }
};

TEST_F(CodecsScript, BuildsThemFromTheSourceOfThePackage)
{
    EXPECT_EQ(Run("codecs"), 0);
    EXPECT_TRUE(HasBuilt());
    EXPECT_EQ(told, "Building the codecs for movies (once, about a minute)\n");
    EXPECT_THAT(called, HasSubstr("source --only-source ffmpeg\nconfigure --prefix=" +
                                  top.Path("build/codecs ")));
    EXPECT_THAT(called, HasSubstr("make install\n"));
}

TEST_F(CodecsScript, BuildsThemOnce)
{
    Run("codecs");
    EXPECT_EQ(CallsOfNextRun(), "");
    EXPECT_EQ(told, "");
}

TEST_F(CodecsScript, BuildsThemAnewWhereThePackageIsNewer)
{
    Run("codecs");
    WriteProgram("dpkg-query", "echo 5.2");
    EXPECT_THAT(CallsOfNextRun(), HasSubstr("make install\n"));
}

TEST_F(CodecsScript, TellsOnceThatTheSourceCannotBeHad)
{
    WriteProgram("apt-get", "exit 100");
    EXPECT_EQ(Run("codecs"), 0);
    EXPECT_FALSE(HasBuilt());
    EXPECT_THAT(told, HasSubstr("The source of the codecs cannot be fetched. Movies are decoded "
                                "with the system's libraries, which start more slowly.\n"));
    CallsOfNextRun();
    EXPECT_EQ(told, "");
}

TEST_F(CodecsScript, TellsWhyTheyCannotBeBuilt)
{
    WriteProgram("make", "echo the disk is full; exit 2");
    EXPECT_EQ(Run("codecs"), 0);
    EXPECT_FALSE(HasBuilt());
    EXPECT_THAT(told, HasSubstr("the disk is full\nThe codecs cannot be built (all of it is in " +
                                top.Path("build/codecs/source/log)")));
}

// A folder in which something was built.
class BuildScript : public SetUpScripts
{
protected:
    BuildScript()
    {
        for (const std::string script : {"setup", "codecs"}) {
            WriteProgram("../scripts/" + script,
                         "echo " + script + " \"$*\" >> " + top.Path("called"));
        }
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

TEST_F(BuildScript, MoviesTakeTheirCodecs)
{
    Run("build release");
    EXPECT_THAT(called, HasSubstr("setup --view\ncodecs \n"));
}

} // namespace

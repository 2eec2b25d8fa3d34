// SPDX-License-Identifier: MIT
//
// The program as it is installed.
#include "tests/viewer/EndToEnd.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;

// Installed into one folder and moved to another, so that nothing can depend on where it was.
class Installed : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        folder = new TestFolder;
        const std::string command = std::string(CMAKE) + " --install " + BUILD_FOLDER +
                                    " --prefix " + folder->Path("first") + " > /dev/null";
        ASSERT_EQ(std::system(command.c_str()), 0);
        fs::rename(folder->Path("first"), folder->Path("second"));
    }
    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }

    static std::string Path(const std::string& name) { return folder->Path("second/" + name); }
    // The exit status; what it prints goes to "out".
    static int Run(const std::string& arguments)
    {
        const std::string command =
            Path("bin/vornview") + " " + arguments + " > " + folder->Path("out") + " 2>&1";
        return WEXITSTATUS(std::system(command.c_str()));
    }

    static TestFolder* folder;
};

TestFolder* Installed::folder = nullptr;

TEST_F(Installed, FindsItsPlugins)
{
    EXPECT_EQ(Run("--list-plugins"), 0);
    for (const char* name : {"VornMovie", "VornGIF", "VornPNG", "VornJPEG"}) {
        EXPECT_THAT(folder->Read("out"),
                    HasSubstr(std::string(name) + " (" + Path("lib/vorn/plugins/") + name));
    }
}

TEST_F(Installed, PlaysAClip)
{
    EXPECT_EQ(Run("--headless --play --report " + folder->Path("report") + " " + Clip("tiny.mpg")),
              0)
        << folder->Read("out");
    const auto report = nlohmann::json::parse(folder->Read("report"));
    EXPECT_EQ(report["objects"][0]["pictures_shown"], PicturesOf("tiny.mpg"));
}

// The build's own copies would do as well, and hide that the installed ones do not.
TEST_F(Installed, UsesNothingOfTheBuildFolder)
{
    for (const std::string& program :
         {Path("bin/vornview"),
          Path("lib/vorn/plugins/VornMovie.plugin/Contents/Linux/VornMovie.so")}) {
        std::system(("ldd " + program + " > " + folder->Path("libraries")).c_str());
        EXPECT_THAT(folder->Read("libraries"),
                    HasSubstr("libvorntoolbox.so => " + folder->Path("second")))
            << program;
    }
}

TEST_F(Installed, BringsItsManualItsCompletionAndItsDesktopEntry)
{
    for (const char* name :
         {"share/man/man1/vornview.1", "share/bash-completion/completions/vornview",
          "share/applications/vornview.desktop"}) {
        EXPECT_TRUE(fs::is_regular_file(Path(name))) << name;
    }
}

// Every option, so that none is forgotten when one is added.
TEST_F(Installed, TheManualAndTheCompletionKnowEveryOption)
{
    ASSERT_EQ(Run("--help"), 0);
    const std::string help = folder->Read("out");
    const std::string manual = ReadFile(Path("share/man/man1/vornview.1"));
    const std::string completion = ReadFile(Path("share/bash-completion/completions/vornview"));
    int options = 0;
    for (size_t at = 0; (at = help.find("--", at)) != std::string::npos; ++options) {
        const size_t end = help.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at);
        const std::string option = help.substr(at, end - at);
        at = end;
        EXPECT_THAT(completion, HasSubstr(option));
        std::string name = option.substr(2);
        for (size_t dash = 0; (dash = name.find('-', dash)) != std::string::npos; dash += 2) {
            name.insert(dash, "\\");
        }
        EXPECT_THAT(manual, HasSubstr("\\-\\-" + name));
    }
    EXPECT_GT(options, 15);
}

} // namespace

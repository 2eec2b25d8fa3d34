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
using testing::Not;

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

    // With a picture of one black pixel in it.
    static std::string WriteMail()
    {
        return folder->Write("a.eml", "From: a@example.org\r\nMIME-Version: 1.0\r\n"
                                      "Content-Type: image/gif; name=\"dot.gif\"\r\n"
                                      "Content-Transfer-Encoding: base64\r\n\r\n"
                                      "R0lGODlhAQABAIAAAAAAAP///ywAAAAAAQABAAACAkQBADs=\r\n");
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
         {Path("bin/vornview"), Path("lib/vorn/VornWeb.so"), Path("lib/vorn/VornMail.so"),
          Path("lib/vorn/plugins/VornMovie.plugin/Contents/Linux/VornMovie.so")}) {
        std::system(("ldd " + program + " > " + folder->Path("libraries")).c_str());
        EXPECT_THAT(folder->Read("libraries"),
                    HasSubstr("libvorntoolbox.so => " + folder->Path("second")))
            << program;
    }
}

// Loading them takes longer than showing a picture.
TEST_F(Installed, StartsWithoutTheLibrariesOfItsParts)
{
    std::system(("ldd " + Path("bin/vornview") + " > " + folder->Path("libraries")).c_str());
    const std::string libraries = folder->Read("libraries");
    ASSERT_THAT(libraries, HasSubstr("libvornviewer.so => " + folder->Path("second")));
    for (const char* name : {"libcurl", "libgmime", "libSDL2"}) {
        EXPECT_THAT(libraries, Not(HasSubstr(name)));
    }
}

TEST_F(Installed, WritesTextWithoutTheLibrariesOfAWindow)
{
    if (!fs::exists(Path("lib/vorn/VornText.so"))) {
        GTEST_SKIP() << "this is a build without text";
    }
    std::system(
        ("ldd " + Path("lib/vorn/VornText.so") + " > " + folder->Path("libraries")).c_str());
    const std::string libraries = folder->Read("libraries");
    EXPECT_THAT(libraries, HasSubstr("libfreetype"));
    EXPECT_THAT(libraries, Not(HasSubstr("libSDL2")));
}

TEST_F(Installed, ShowsAnEmail)
{
    EXPECT_EQ(Run("--info " + WriteMail()), 0) << folder->Read("out");
    EXPECT_THAT(folder->Read("out"), HasSubstr("dot.gif"));
}

TEST_F(Installed, FetchesFromTheWeb)
{
    EXPECT_EQ(Run("--headless http://127.0.0.1:1/a.mpg"), 1);
    EXPECT_THAT(folder->Read("out"), HasSubstr("the server cannot be reached"));
}

// Whoever packs the program may leave some out, and with them the libraries that they need.
class InstalledWithoutParts : public Installed
{
protected:
    void SetUp() override { fs::rename(Path("lib/vorn"), Path("lib/elsewhere")); }
    void TearDown() override { fs::rename(Path("lib/elsewhere"), Path("lib/vorn")); }

    static int Run(const std::string& arguments)
    {
        return Installed::Run("--plugins " + Path("lib/elsewhere/plugins") + " " + arguments);
    }
};

TEST_F(InstalledWithoutParts, StillPlaysAClip)
{
    EXPECT_EQ(Run("--headless --play " + Clip("tiny.mpg")), 0) << folder->Read("out");
}

TEST_F(InstalledWithoutParts, TellsWhatAnEmailNeeds)
{
    EXPECT_EQ(Run("--headless " + WriteMail()), 1);
    EXPECT_THAT(folder->Read("out"), HasSubstr("the viewer's part VornMail cannot be used"));
}

TEST_F(Installed, TellsWhyTextIsNotDrawn)
{
    const std::string part = Path("lib/vorn/VornText.so");
    const std::string elsewhere = part + ".elsewhere";
    const bool isThere = fs::exists(part);
    if (isThere) {
        fs::rename(part, elsewhere);
    }
    const std::string mail = folder->Write(
        "text.eml", "MIME-Version: 1.0\r\nContent-Type: text/plain\r\n\r\nsome words\r\n");
    EXPECT_EQ(Run("--headless " + mail), 0);
    EXPECT_THAT(folder->Read("out"),
                HasSubstr("1 paragraph of text is not drawn: the viewer's part VornText cannot"));
    if (isThere) {
        fs::rename(elsewhere, part);
    }
}

TEST_F(InstalledWithoutParts, TellsWhatAnAddressNeeds)
{
    EXPECT_EQ(Run("--headless http://127.0.0.1:1/a.mpg"), 1);
    EXPECT_THAT(folder->Read("out"), HasSubstr("the viewer's part VornWeb cannot be used"));
}

TEST_F(InstalledWithoutParts, ShowsThePageWithoutAWindow)
{
    EXPECT_EQ(Run("--until 0.1 " + Clip("tiny.mpg")), 0);
    EXPECT_THAT(
        folder->Read("out"),
        testing::AllOf(testing::AnyOf(HasSubstr("the viewer's part VornWindow cannot be used"),
                                      HasSubstr("this vornview was built without one")),
                       HasSubstr("the page runs without one")));
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

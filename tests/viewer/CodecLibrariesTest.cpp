// SPDX-License-Identifier: MIT
//
// The program where the codec libraries are wanting, and where it makes a difference when they
// come.
#include "tests/viewer/EndToEnd.h"
#include "tests/viewer/ImageFiles.h"

#include <gmock/gmock.h>

extern "C" {
#include <libavcodec/version_major.h>
#include <libavutil/macros.h>
#include <libavutil/version.h>
}

#include <cstdlib>
#include <filesystem>

namespace
{

using testing::HasSubstr;
using testing::Not;

// The system's linker looks into the test's folder first.
class OtherCodecLibraries : public EndToEnd
{
protected:
    OtherCodecLibraries()
    {
        const char* const old = std::getenv("LD_LIBRARY_PATH");
        before_ = old == nullptr ? "" : old;
        setenv("LD_LIBRARY_PATH", viewer.Folder().Path("").c_str(), 1);
    }
    ~OtherCodecLibraries() override
    {
        before_.empty() ? unsetenv("LD_LIBRARY_PATH")
                        : setenv("LD_LIBRARY_PATH", before_.c_str(), 1);
    }

private:
    std::string before_;
};

class BrokenCodecLibraries : public OtherCodecLibraries
{
protected:
    BrokenCodecLibraries()
    {
        Write("libavcodec.so." AV_STRINGIFY(LIBAVCODEC_VERSION_MAJOR), "no library");
    }
};

TEST_F(OtherCodecLibraries, BeginBeforeTheyEndThoughTheProgramEndsSooner)
{
    std::filesystem::copy_file(
        SLOW_LIBRARY, viewer.Folder().Path("libavutil.so." AV_STRINGIFY(LIBAVUTIL_VERSION_MAJOR)));
    const ViewerResult result = Run({Write("clip.mpg", "no movie")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, Not(HasSubstr("ended before it had begun")));
}

TEST_F(BrokenCodecLibraries, AreToldWhereAMovieIsToBeShown)
{
    for (const char* clip : {"mpeg1.mpg", "tiny.mpg", "sound.mp3"}) {
        const ViewerResult result = Run({Clip(clip)});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.Object()["error"], -8961) << clip;
        EXPECT_THAT(result.err, HasSubstr(std::string(clip) + ": the libraries that decode movies "
                                                              "cannot be loaded (error -8961)"));
    }
}

TEST_F(BrokenCodecLibraries, AreNothingToAPageOfImages)
{
    const ViewerResult result = Run({Write("image.gif", MakeGif(8, 8))});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

// With a report, nothing is taken in while the libraries are being loaded.
TEST_F(EndToEnd, ASnapshotIsTheSameHoweverLateTheLibrariesCome)
{
    for (const char* at : {"0", "1.5"}) {
        const std::string page = viewer.Folder().Path("page.png");
        const std::vector<std::string> arguments = {
            "--headless", "--play",          "--until",        at, "--at", at, "--snapshot",
            page,         Clip("mpeg1.mpg"), Clip("mpeg2.mpg")};
        const std::string temporary = viewer.Folder().Path("");
        ASSERT_EQ(RunVornview(arguments, temporary).status, 0);
        const std::string without = ReadFile(page);
        std::vector<std::string> reporting = arguments;
        reporting.insert(reporting.begin(), {"--report", viewer.Folder().Path("report")});
        ASSERT_EQ(RunVornview(reporting, temporary).status, 0);
        EXPECT_EQ(ReadFile(page), without) << at;
        EXPECT_FALSE(without.empty());
    }
}

} // namespace

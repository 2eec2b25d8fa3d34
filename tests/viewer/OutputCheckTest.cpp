// SPDX-License-Identifier: MIT
#include "viewer/OutputCheck.h"

#include "tests/viewer/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::HasSubstr;
using viewer::Options;

class OutputCheck : public testing::Test
{
protected:
    OutputCheck()
    {
        options.objects.push_back({folder.Write("clip.mpg", "a movie"), "", 0x1F});
        std::filesystem::create_symlink("clip.mpg", folder.Path("same.mpg"));
    }
    std::string Complaint() const
    {
        try {
            viewer::RefuseOutputsThatMeet(options);
        } catch (const viewer::UsageError& error) {
            return error.what();
        }
        return "";
    }

    TestFolder folder;
    Options options;
};

TEST_F(OutputCheck, AnObjectIsNotOverwritten)
{
    options.reportPath = folder.Path("clip.mpg");
    EXPECT_THAT(Complaint(), HasSubstr("--report: '" + folder.Path("clip.mpg")));
}

TEST_F(OutputCheck, NorUnderAnotherName)
{
    options.wavPath = folder.Path("same.mpg");
    EXPECT_THAT(Complaint(), HasSubstr("--wav: '"));
}

TEST_F(OutputCheck, NorByASnapshot)
{
    options.snapshots = {{0, folder.Path("a.png")}, {1, folder.Path("./clip.mpg")}};
    EXPECT_THAT(Complaint(), HasSubstr("--snapshot: '"));
}

TEST_F(OutputCheck, NorByADrag)
{
    options.drag.path = folder.Path("clip.mpg");
    EXPECT_THAT(Complaint(), HasSubstr("--drag: '"));
    options.drag.path = folder.Path("a.pict");
    options.drag.imagePath = folder.Path("same.mpg");
    EXPECT_THAT(Complaint(), HasSubstr("--drag-image: '"));
}

TEST_F(OutputCheck, TwoOutputsIntoOneFileAreRefused)
{
    options.snapshots = {{0, folder.Path("out")}};
    options.reportPath = folder.Path("./out");
    EXPECT_THAT(Complaint(), HasSubstr("is also written by --snapshot"));
    options.reportPath = folder.Path("other");
    EXPECT_EQ(Complaint(), "");
}

TEST_F(OutputCheck, TwoOutputsIntoStandardOutputAreRefused)
{
    options.wavPath = "-";
    options.reportPath = "-";
    EXPECT_EQ(Complaint(), "--report: '-' is also written by --wav");
}

TEST_F(OutputCheck, OtherFilesAndDevicesAreFine)
{
    options.objects.push_back({"/dev/null", "", 0x1F});
    options.wavPath = "/dev/null";
    options.drag.path = "/dev/null";
    options.reportPath = folder.Write("old.json", "{}");
    options.snapshots = {{0, folder.Path("new.png")}};
    EXPECT_EQ(Complaint(), "");
}

} // namespace

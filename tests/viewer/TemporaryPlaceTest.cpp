// SPDX-License-Identifier: MIT
#include "viewer/TemporaryPlace.h"

#include "tests/viewer/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using testing::HasSubstr;

class TemporaryPlace : public testing::Test
{
protected:
    TemporaryPlace() : former(viewer::TemporaryPlace()) {}
    ~TemporaryPlace() override { setenv("TMPDIR", former.c_str(), 1); }

    static std::string ComplaintAbout(const std::string& place)
    {
        setenv("TMPDIR", place.c_str(), 1);
        try {
            viewer::RequireTemporaryPlace();
        } catch (const std::runtime_error& problem) {
            return problem.what();
        }
        return "";
    }

    TestFolder folder;
    std::string former;
};

TEST_F(TemporaryPlace, IsTmpdir)
{
    setenv("TMPDIR", "/some/where", 1);
    EXPECT_EQ(viewer::TemporaryPlace(), "/some/where");
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(viewer::TemporaryPlace(), "/tmp");
}

TEST_F(TemporaryPlace, MustBeAFolder)
{
    EXPECT_EQ(ComplaintAbout(folder.Path(".")), "");
    EXPECT_THAT(ComplaintAbout(folder.Path("nothing")),
                HasSubstr(folder.Path("nothing") + "' (TMPDIR) cannot be used: No such file"));
    EXPECT_THAT(ComplaintAbout(folder.Write("file", "")), HasSubstr("Not a directory"));
}

} // namespace

// SPDX-License-Identifier: MIT
#include "viewer/ExpectedMovies.h"

#include "tests/support/ToolboxProbe.h"
#include "tests/viewer/FakePlugins.h"

#include <gtest/gtest.h>

namespace
{

class ExpectedMovies : public testing::Test
{
protected:
    // How often movies are prepared for a page of these objects.
    int Prepared(const std::vector<viewer::ObjectRequest>& objects)
    {
        viewer::Options options;
        options.objects = objects;
        const test::ToolboxProbe probe;
        PrepareExpectedMovies(options, plugins.Folder());
        return probe.Count("PrepareMovies");
    }

    FakePlugins plugins;
};

TEST_F(ExpectedMovies, ArePreparedForByName)
{
    EXPECT_EQ(Prepared({{"/some/picture.png", "", 0}, {"/some/clip.FAKE", "", 0}}), 1);
    EXPECT_EQ(Prepared({{"http://host/clip.fake?of=today", "", 0}}), 1);
}

TEST_F(ExpectedMovies, ArePreparedForByGivenType)
{
    EXPECT_EQ(Prepared({{"-", "video/fake", 0}}), 1);
}

TEST_F(ExpectedMovies, AreNotPreparedForWhereThereAreNone)
{
    EXPECT_EQ(Prepared({{"picture.png", "", 0}, {"-", "", 0}, {"clip.fake", "image/png", 0}}), 0);
}

} // namespace

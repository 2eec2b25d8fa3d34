// SPDX-License-Identifier: MIT
//
// The program on media that nobody here made: every file below the folder that VORN_TEST_MEDIA
// names.
#include "tests/support/MediaFiles.h"
#include "tests/viewer/RunningViewer.h"

#include <gtest/gtest.h>

namespace
{

class Media : public testing::TestWithParam<std::string>
{
};

TEST_P(Media, PlaysTheSameHoweverItArrives)
{
    if (GetParam().empty()) {
        GTEST_SKIP() << "VORN_TEST_MEDIA names no folder of media";
    }
    RunningViewer viewer;
    const std::vector<std::string> common = {"--play", "--type", "video/mpeg", GetParam()};
    const ViewerResult atOnce = viewer.Run(common);
    std::vector<std::string> paced = {"--arrive", "300000"};
    paced.insert(paced.end(), common.begin(), common.end());
    const ViewerResult slow = viewer.Run(paced);
    EXPECT_EQ(atOnce.Object()["complete"], true);
    EXPECT_EQ(atOnce.status, atOnce.Object()["error"] == 0 ? 0 : 1);
    EXPECT_EQ(slow.status, atOnce.status);
    for (const char* key : {"error", "rect", "pictures_shown", "sound_samples"}) {
        EXPECT_EQ(slow.Object()[key], atOnce.Object()[key]) << key;
    }
    EXPECT_TRUE(slow.wav == atOnce.wav);
    EXPECT_TRUE(slow.snapshot == atOnce.snapshot);
    EXPECT_TRUE(viewer.LeftBehind().empty());
}

INSTANTIATE_TEST_SUITE_P(EndToEnd, Media,
                         testing::ValuesIn(test::MediaFiles({".mpg", ".mpeg", ".vob", ".ts", ".m1v",
                                                             ".m2v", ".mp1", ".mp2", ".mp3", ".bit",
                                                             ".mpa"})),
                         test::MediaFileName);

} // namespace

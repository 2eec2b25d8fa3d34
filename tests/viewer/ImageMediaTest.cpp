// SPDX-License-Identifier: MIT
//
// The program on images that nobody here made: every file below the folder that VORN_TEST_MEDIA
// names.
#include "tests/support/MediaFiles.h"
#include "tests/viewer/RunningViewer.h"

namespace
{

class ImageMedia : public testing::TestWithParam<std::string>
{
};

TEST_P(ImageMedia, LooksTheSameHoweverItArrives)
{
    if (GetParam().empty()) {
        GTEST_SKIP() << "VORN_TEST_MEDIA names no folder of media";
    }
    RunningViewer viewer;
    const std::vector<std::string> onPageThatHoldsIt = {"--size", "800x1000", GetParam()};
    const ViewerResult atOnce = viewer.Run(onPageThatHoldsIt);
    std::vector<std::string> arriving = onPageThatHoldsIt;
    arriving.insert(arriving.begin(), {"--arrive", "100000"});
    const ViewerResult slow = viewer.Run(arriving);
    ASSERT_TRUE(atOnce.report.is_object());
    ASSERT_TRUE(slow.report.is_object());
    // A row of pixels may shrink to nothing on the page.
    const bool isShown =
        !atOnce.Object()["first_picture"].is_null() || atOnce.Object()["error"] == 0;
    EXPECT_EQ(atOnce.status, isShown ? 0 : 1) << atOnce.err;
    EXPECT_EQ(atOnce.err.empty(), atOnce.Object()["error"] == 0) << atOnce.err;
    for (const char* key : {"error", "rect", "comment"}) {
        EXPECT_EQ(slow.Object()[key], atOnce.Object()[key]) << key;
    }
    // Of a damaged image more may be decoded before the damage arrives.
    if (atOnce.Object()["error"] == 0) {
        EXPECT_EQ(slow.status, atOnce.status);
        EXPECT_TRUE(slow.snapshot == atOnce.snapshot);
    }
}

INSTANTIATE_TEST_SUITE_P(Images, ImageMedia,
                         testing::ValuesIn(test::MediaFiles({".gif", ".png", ".jpg", ".jpeg"})),
                         test::MediaFileName);

} // namespace

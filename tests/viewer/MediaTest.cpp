// SPDX-License-Identifier: MIT
//
// The program on media that nobody here made: every file below the folder that VORN_TEST_MEDIA
// names.
#include "tests/viewer/RunningViewer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>

namespace
{

namespace fs = std::filesystem;

const std::set<std::string> kExtensions = {".mpg", ".mpeg", ".vob", ".ts",  ".m1v", ".m2v",
                                           ".mp1", ".mp2",  ".mp3", ".bit", ".mpa"};

std::vector<std::string> FindMedia()
{
    const char* folder = std::getenv("VORN_TEST_MEDIA");
    std::vector<std::string> found;
    if (folder == nullptr || *folder == '\0') {
        return {""};
    }
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (kExtensions.count(entry.path().extension().string()) > 0) {
            found.push_back(entry.path().string());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string NameOf(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param.empty() ? "None" : fs::path(info.param).filename().string();
    for (char& character : name) {
        character = std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    }
    return name + "_" + std::to_string(info.index);
}

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

INSTANTIATE_TEST_SUITE_P(EndToEnd, Media, testing::ValuesIn(FindMedia()), NameOf);

} // namespace

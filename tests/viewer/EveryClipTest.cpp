// SPDX-License-Identifier: MIT
//
// The program on the movie bundle, with each clip that the ffmpeg program made.
#include "tests/viewer/EndToEnd.h"
#include "toolbox/Types.h"

#include <gmock/gmock.h>

#include <png.h>

namespace
{

using testing::HasSubstr;

// The number of pixels of a PNG file that are not white and lie outside a rectangle of the report.
int CountPixelsOutside(const std::string& png, const nlohmann::json& rect)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, png.data(), png.size()), 0);
    image.format = PNG_FORMAT_GRAY;
    std::vector<UInt8> grey(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, grey.data(), 0, nullptr);
    int count = 0;
    for (size_t i = 0; i < grey.size(); ++i) {
        const auto v = static_cast<int>(i / image.width);
        const auto h = static_cast<int>(i % image.width);
        const bool inside = v >= rect[0] && h >= rect[1] && v < rect[2] && h < rect[3];
        count += !inside && grey[i] != 255 ? 1 : 0;
    }
    return count;
}

class EveryClip : public EndToEnd, public testing::WithParamInterface<const char*>
{
};

TEST_P(EveryClip, PlaysEveryPictureAndEverySample)
{
    const ViewerResult result = Run({"--play", Clip(GetParam())});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object()["error"], 0);
    EXPECT_EQ(result.Object()["complete"], true);
    EXPECT_EQ(result.Object()["pictures_shown"], PicturesOf(GetParam()));
    EXPECT_EQ(result.Object()["pictures_dropped"], 0);
    EXPECT_TRUE(result.wav == SoundOf(GetParam())) << result.wav.size() << " bytes of sound";
    EXPECT_THAT(result.err, testing::Not(HasSubstr("vornview:")));
}

TEST_P(EveryClip, PlaysTheSameAtEveryRateOfArrival)
{
    const ViewerResult atOnce = Run({"--play", Clip(GetParam())});
    for (const char* rate : {"30000", "262144", "5000000"}) {
        const ViewerResult slow = Run({"--play", "--arrive", rate, Clip(GetParam())});
        EXPECT_EQ(slow.status, 0) << rate;
        EXPECT_EQ(slow.Object()["pictures_shown"], atOnce.Object()["pictures_shown"]) << rate;
        EXPECT_TRUE(slow.wav == atOnce.wav) << rate;
        EXPECT_TRUE(slow.snapshot == atOnce.snapshot) << rate;
    }
}

TEST_P(EveryClip, StaysInItsRectangle)
{
    const ViewerResult result = Run({"--play", Clip(GetParam())});
    EXPECT_EQ(CountPixelsOutside(result.snapshot, result.Object()["rect"]), 0);
}

INSTANTIATE_TEST_SUITE_P(EndToEnd, EveryClip,
                         testing::Values("mpeg1.mpg", "mpeg2.mpg", "silent.mpg", "early.mpg",
                                         "tiny.mpg", "video.m1v", "video.m2v", "sound.mp2",
                                         "sound.mp3"),
                         [](const auto& each) {
                             std::string name = each.param;
                             name[name.find('.')] = '_';
                             return name;
                         });

} // namespace

// SPDX-License-Identifier: MIT
//
// JPEG files that nobody here made: those below the folder that VORN_TEST_MEDIA names.
#include "tests/decoders/JpegFiles.h"
#include "tests/support/MediaFiles.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace test
{

namespace
{

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornJPEG");
    return bundle;
}

class JpegMedia : public testing::TestWithParam<std::string>
{
};

// Where libjpeg-turbo gives up, so do we. Where it decodes all, so do we, to the same pixels; but
// we tell of an error where it warned of pixels that are wrong.
TEST_P(JpegMedia, EndAsTheLibraryDecodesThem)
{
    if (GetParam().empty())
        GTEST_SKIP() << "VORN_TEST_MEDIA names no folder of media";
    const Bytes file = ReadMediaFile(GetParam());
    Picture expected;
    int warnings = 0;
    std::string failure;
    try {
        expected = ReadJpeg(file, &warnings);
    } catch (const std::runtime_error& error) {
        failure = error.what();
    }
    for (const SInt32 step : {16384, 61}) {
        HostedImage image(Bundle(), file);
        image.ArriveInPieces(step);
        const OSErr result = image.Decode();
        if (!failure.empty()) {
            EXPECT_NE(result, 0) << failure;
            continue;
        }
        EXPECT_TRUE(result == 0 || warnings > 0) << result;
        if (result == 0) {
            EXPECT_EQ(Difference(image.Display(expected.width, expected.height), expected), 0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, JpegMedia, testing::ValuesIn(MediaFiles({".jpg", ".jpeg"})),
                         MediaFileName);

} // namespace

} // namespace test

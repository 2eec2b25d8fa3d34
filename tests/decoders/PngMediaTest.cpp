// SPDX-License-Identifier: MIT
//
// PNG files that nobody here made: those below the folder that VORN_TEST_MEDIA names.
#include "tests/decoders/PngFiles.h"
#include "tests/support/MediaFiles.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace test
{

namespace
{

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornPNG");
    return bundle;
}

class PngMedia : public testing::TestWithParam<std::string>
{
};

// Where libpng decodes the whole file, so do we, to the same pixels; where it gives up, so do we.
TEST_P(PngMedia, EndAsTheLibraryDecodesThem)
{
    if (GetParam().empty())
        GTEST_SKIP() << "VORN_TEST_MEDIA names no folder of media";
    const Bytes file = ReadMediaFile(GetParam());
    Picture expected;
    std::string failure;
    try {
        expected = ReadPng(file);
    } catch (const std::runtime_error& error) {
        failure = error.what();
    }
    for (const SInt32 step : {16384, 61}) {
        HostedImage image(Bundle(), file);
        image.ArriveInPieces(step);
        const OSErr result = image.Decode();
        // The sum behind the last pixel says nothing about a pixel.
        if (failure != "IDAT: incorrect data check") {
            EXPECT_EQ(result == 0, failure.empty()) << result << ' ' << failure;
        }
        if (failure.empty()) {
            EXPECT_LE(Difference(image.Display(expected.width, expected.height), expected), 2);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, PngMedia, testing::ValuesIn(MediaFiles({".png"})), MediaFileName);

} // namespace

} // namespace test

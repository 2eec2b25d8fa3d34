// SPDX-License-Identifier: MIT
//
// The kinds of JPEG files, against the library's own full decode.
#include "tests/decoders/JpegFiles.h"
#include "tests/support/ImageRules.h"

#include <gtest/gtest.h>

namespace test
{

namespace
{

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornJPEG");
    return bundle;
}

struct Format {
    const char* name;
    JpegSpec spec;
    int depth; // of the frame that it becomes
};

void PrintTo(const Format& format, std::ostream* out)
{
    *out << format.name;
}

std::vector<Format> AllFormats()
{
    std::vector<Format> formats = {
        {"Gray", {.colorSpace = JCS_GRAYSCALE, .sampling = 1}, 8},
        {"YCbCr", {}, 32},
        {"YCbCrUnsampled", {.sampling = 1}, 32},
        {"RGB", {.colorSpace = JCS_RGB, .sampling = 1}, 32},
        {"InvertedCMYK", {.colorSpace = JCS_CMYK, .sampling = 1}, 32},
        {"PlainCMYK", {.colorSpace = JCS_CMYK, .sampling = 1, .hasAdobeMarker = false}, 32},
        {"YCCK", {.colorSpace = JCS_YCCK}, 32},
        {"Restarting", {.restartInterval = 3}, 32},
        {"ScanForEach", {.hasScanForEach = true}, 32},
        {"Arithmetic", {.isArithmetic = true}, 32},
    };
    const size_t sequential = formats.size();
    for (size_t i = 0; i < sequential; ++i) {
        if (formats[i].spec.hasScanForEach)
            continue;
        formats.push_back(formats[i]);
        formats.back().spec.isProgressive = true;
    }
    return formats;
}

class JpegFormats : public testing::TestWithParam<Format>
{
};

TEST_P(JpegFormats, ShowTheLibrarysOwnPixels)
{
    const Bytes file = WriteJpeg(GetParam().spec);
    HostedImage image(Bundle(), file);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(Difference(image.Display(67, 53), ReadJpeg(file)), 0);
}

TEST_P(JpegFormats, TakeTheDepthThatHoldsThem)
{
    HostedImage image(Bundle(), WriteJpeg(GetParam().spec));
    image.Decode();
    EXPECT_EQ(image.Depth(), GetParam().depth);
    EXPECT_EQ(image.MaskDepth(), 0);
}

TEST_P(JpegFormats, EndInTheSamePixelsHoweverTheyArrive)
{
    ExpectSamePixelsHoweverItArrives(Bundle(), {WriteJpeg(GetParam().spec), 67, 53});
}

std::string NameOf(const testing::TestParamInfo<Format>& info)
{
    return std::string(info.param.name) + (info.param.spec.isProgressive ? "Progressive" : "");
}

INSTANTIATE_TEST_SUITE_P(All, JpegFormats, testing::ValuesIn(AllFormats()), NameOf);

TEST(JpegSizes, ShowTheLibrarysOwnPixels)
{
    for (UInt32 width = 1; width <= 34; width += 3) {
        for (UInt32 height = 1; height <= 34; height += 3) {
            for (const bool isProgressive : {false, true}) {
                const Bytes file =
                    WriteJpeg({.width = width, .height = height, .isProgressive = isProgressive});
                HostedImage image(Bundle(), file);
                EXPECT_EQ(image.Decode(), 0) << width << 'x' << height;
                EXPECT_EQ(image.Display(static_cast<SInt32>(width), static_cast<SInt32>(height)),
                          ReadJpeg(file))
                    << width << 'x' << height;
            }
        }
    }
}

} // namespace

} // namespace test

// SPDX-License-Identifier: MIT
//
// Every kind of pixel that a PNG file may have, against the library's own full decode.
#include "tests/decoders/PngFiles.h"
#include "tests/support/ImageRules.h"

#include <gtest/gtest.h>

namespace test
{

namespace
{

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornPNG");
    return bundle;
}

struct Format {
    int colorType;
    int bitDepth;
    bool hasTransparency;
    int depth; // of the frame that it becomes
    int maskDepth;
};

void PrintTo(const Format& format, std::ostream* out)
{
    *out << "colour type " << format.colorType << ", " << format.bitDepth << " bits";
}

std::vector<Format> AllFormats()
{
    std::vector<Format> formats;
    for (const bool transparent : {false, true}) {
        const int mask = transparent ? 32 : 0;
        for (const int bits : {1, 2, 4, 8, 16})
            formats.push_back({PNG_COLOR_TYPE_GRAY, bits, transparent, mask ? 32 : 8, mask});
        for (const int bits : {1, 2, 4, 8})
            formats.push_back({PNG_COLOR_TYPE_PALETTE, bits, transparent, mask ? 32 : 8, mask});
        for (const int bits : {8, 16})
            formats.push_back({PNG_COLOR_TYPE_RGB, bits, transparent, 32, mask});
    }
    for (const int bits : {8, 16}) {
        formats.push_back({PNG_COLOR_TYPE_GRAY_ALPHA, bits, false, 32, 32});
        formats.push_back({PNG_COLOR_TYPE_RGB_ALPHA, bits, false, 32, 32});
    }
    return formats;
}

class PngFormats : public testing::TestWithParam<std::tuple<Format, bool>>
{
protected:
    PngSpec Spec() const
    {
        const auto& [format, isInterlaced] = GetParam();
        PngSpec spec;
        spec.colorType = format.colorType;
        spec.bitDepth = format.bitDepth;
        spec.hasTransparency = format.hasTransparency;
        spec.isInterlaced = isInterlaced;
        return spec;
    }
    const Format& ItsFormat() const { return std::get<0>(GetParam()); }
    // Blending rounds; what is opaque must be exact.
    int Tolerance() const { return ItsFormat().maskDepth == 0 ? 0 : 2; }
};

TEST_P(PngFormats, ShowTheLibrarysOwnPixels)
{
    const Bytes file = WritePng(Spec());
    HostedImage image(Bundle(), file);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_LE(Difference(image.Display(37, 29), ReadPng(file)), Tolerance());
}

TEST_P(PngFormats, TakeTheDepthThatHoldsThem)
{
    HostedImage image(Bundle(), WritePng(Spec()));
    image.Decode();
    EXPECT_EQ(image.Depth(), ItsFormat().depth);
    EXPECT_EQ(image.MaskDepth(), ItsFormat().maskDepth);
}

TEST_P(PngFormats, EndInTheSamePixelsHoweverTheyArrive)
{
    ExpectSamePixelsHoweverItArrives(Bundle(), {WritePng(Spec()), 37, 29});
}

std::string NameOf(const testing::TestParamInfo<std::tuple<Format, bool>>& info)
{
    const auto& [format, isInterlaced] = info.param;
    static const char* const kTypes[] = {"Gray", "", "RGB", "Palette", "GrayAlpha", "", "RGBAlpha"};
    return kTypes[format.colorType] + std::to_string(format.bitDepth) +
           (format.hasTransparency ? "Transparent" : "") + (isInterlaced ? "Interlaced" : "");
}

INSTANTIATE_TEST_SUITE_P(All, PngFormats,
                         testing::Combine(testing::ValuesIn(AllFormats()), testing::Bool()),
                         NameOf);

// Passes of an interlaced image without any pixel come out too.
TEST(PngSizes, ShowTheLibrarysOwnPixels)
{
    for (UInt32 width = 1; width <= 9; ++width) {
        for (UInt32 height = 1; height <= 9; ++height) {
            for (const bool isInterlaced : {false, true}) {
                PngSpec spec = {width, height};
                spec.isInterlaced = isInterlaced;
                const Bytes file = WritePng(spec);
                HostedImage image(Bundle(), file);
                EXPECT_EQ(image.Decode(), 0) << width << 'x' << height;
                EXPECT_EQ(image.Display(static_cast<SInt32>(width), static_cast<SInt32>(height)),
                          ReadPng(file))
                    << width << 'x' << height;
            }
        }
    }
}

} // namespace

} // namespace test

// SPDX-License-Identifier: MIT
//
// PNG files that are cut off, damaged or too large.
#include "tests/decoders/PngFiles.h"
#include "tests/support/ImageRules.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/PictureRows.h"
#include "toolbox/Errors.h"

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

PngSpec TallSpec()
{
    PngSpec spec;
    spec.height = 400;
    return spec;
}

TEST(PngDamage, KeepsWhatArrivedOfATruncatedFile)
{
    const Bytes file = WritePng(TallSpec());
    const Picture whole = ReadPng(file);
    HostedImage image(Bundle(), Bytes(file.begin(), file.begin() + ptrdiff_t(file.size() / 2)));
    EXPECT_EQ(image.Decode(), kDataNotAvailableErr);
    EXPECT_TRUE(image.WasTold("renderingDone 1207"));
    EXPECT_GT(CommonRows(image.Display(37, 400), whole), 150);
}

TEST(PngDamage, SaysThatThereIsNothingOfAFileWithoutAHeader)
{
    const Bytes file = WritePng(PngSpec());
    for (const ptrdiff_t size : {0, 1, 8, 20}) {
        HostedImage image(Bundle(), Bytes(file.begin(), file.begin() + size));
        EXPECT_EQ(image.Decode(), kVornErrImageFailed);
        EXPECT_TRUE(image.WasTold("renderingDone 1208"));
        EXPECT_EQ(image.Depth(), 0);
    }
}

TEST(PngDamage, KeepsTheRowsBeforeADamagedOne)
{
    Bytes file = WritePng(TallSpec());
    const Picture whole = ReadPng(file);
    for (size_t i = 0; i < 200; ++i)
        file[file.size() / 2 + i] ^= 0x5A;
    HostedImage image(Bundle(), file);
    EXPECT_EQ(image.Decode(), kVornErrRenderFailed);
    EXPECT_GT(CommonRows(image.Display(37, 400), whole), 100);
}

TEST(PngDamage, TellsOfRowsThatAreMissingInAnIntactFile)
{
    for (const bool isInterlaced : {false, true}) {
        PngSpec spec = TallSpec();
        spec.isInterlaced = isInterlaced;
        Bytes file = WritePng(spec);
        const Picture whole = ReadPng(file);
        // From the middle of the image data there is no more than the end of the file.
        const size_t cut = FindChunk(file, "IDAT", 20);
        file.erase(file.begin() + ptrdiff_t(cut),
                   file.begin() + ptrdiff_t(FindChunk(file, "IEND")));
        HostedImage image(Bundle(), file);
        EXPECT_EQ(image.Decode(), kVornErrRenderFailed);
        EXPECT_EQ(image.Depth(), 32);
        if (!isInterlaced) {
            EXPECT_GT(CommonRows(image.Display(37, 400), whole), 30);
        }
    }
}

TEST(PngDamage, TellsOfDataThatCannotBeInflatedInIntactChunks)
{
    Bytes file = WritePng(TallSpec());
    const Picture whole = ReadPng(file);
    const size_t chunk = FindChunk(file, "IDAT", 20);
    std::fill_n(file.begin() + ptrdiff_t(chunk + 8), 100, UInt8{0xFF});
    FixCheckSum(file, chunk);
    HostedImage image(Bundle(), file);
    EXPECT_EQ(image.Decode(), kVornErrRenderFailed);
    EXPECT_GT(CommonRows(image.Display(37, 400), whole), 30);
}

TEST(PngDamage, RefusesWhatIsNoPng)
{
    HostedImage image(Bundle(), Bytes(5000, 'x'));
    EXPECT_EQ(image.Decode(), kVornErrImageFailed);
    EXPECT_TRUE(image.WasTold("renderingDone 1206"));
}

TEST(PngDamage, IgnoresAncillaryChunksWithWrongSums)
{
    PngSpec spec;
    spec.filling = 300;
    spec.texts = {{"Comment", "text"}};
    Bytes file = WritePng(spec);
    const Picture whole = ReadPng(file);
    ++file[FindChunk(file, "fiLl") + 20];
    ++file[FindChunk(file, "tEXt") + 20];
    HostedImage image(Bundle(), file);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Display(37, 29), whole);
}

TEST(PngDamage, SurvivesAnyChange)
{
    PngSpec spec;
    spec.colorType = PNG_COLOR_TYPE_PALETTE;
    spec.bitDepth = 4;
    spec.hasTransparency = true;
    spec.isInterlaced = true;
    spec.texts = {{"Comment", "text"}};
    EXPECT_GT(CountFailuresOfChangedFiles(Bundle(), {WritePng(spec), 37, 29}, 3, 400), 100);
}

TEST(PngDamage, LeavesNothingBehind)
{
    PngSpec spec;
    spec.colorType = PNG_COLOR_TYPE_PALETTE;
    ExpectNothingLeftOfParts(Bundle(), {WritePng(spec), 37, 29}, 10);
}

TEST(PngLimits, RefuseAnImageThatNeedsMore)
{
    PngSpec spec;
    spec.width = spec.height = 100;
    const MemoryLimit limit(100 * 100 * 4 - 1);
    HostedImage image(Bundle(), WritePng(spec));
    EXPECT_EQ(image.Decode(), memFullErr);
    EXPECT_EQ(image.Depth(), 0);
    EXPECT_FALSE(image.WasTold("gotRect"));
}

TEST(PngLimits, TakeAnImageThatNeedsJustThat)
{
    PngSpec spec;
    spec.width = spec.height = 100;
    const MemoryLimit limit(100 * 100 * 4);
    HostedImage image(Bundle(), WritePng(spec));
    EXPECT_EQ(image.Decode(), 0);
}

TEST(PngLimits, HalveTheMemoryOfATransparentImage)
{
    for (const bool isInterlaced : {false, true}) {
        PngSpec spec;
        spec.width = spec.height = 100;
        spec.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
        spec.isInterlaced = isInterlaced;
        const Bytes file = WritePng(spec);
        const MemoryLimit limit(100 * 100 * 4);
        HostedImage image(Bundle(), file);
        EXPECT_EQ(image.Decode(), 0);
        EXPECT_EQ(image.Depth(), 16);
        EXPECT_EQ(image.MaskDepth(), 16);
        // Five bits of a component and five of alpha are lost to 8 levels each at most.
        EXPECT_LE(Difference(image.Display(100, 100), ReadPng(file)), 16);
    }
}

TEST(PngLimits, RefuseWhatCoordinatesCannotName)
{
    PngSpec spec;
    spec.colorType = PNG_COLOR_TYPE_GRAY;
    spec.width = 32768;
    HostedImage tooWide(Bundle(), WritePng(spec));
    EXPECT_EQ(tooWide.Decode(), kVornErrImageFailed);
    spec.width = 32767;
    HostedImage wide(Bundle(), WritePng(spec));
    EXPECT_EQ(wide.Decode(), 0);
}

TEST(PngLimits, RefuseRowsThatRowBytesCannotHold)
{
    PngSpec spec;
    spec.width = 16384;
    HostedImage tooWide(Bundle(), WritePng(spec));
    EXPECT_EQ(tooWide.Decode(), memFullErr);
    spec.width = 16383;
    HostedImage wide(Bundle(), WritePng(spec));
    EXPECT_EQ(wide.Decode(), 0);
}

TEST(PngLimits, TakeTransparentRowsThatHalfTheDepthCanHold)
{
    PngSpec spec;
    spec.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
    spec.width = 32767;
    spec.height = 1;
    HostedImage image(Bundle(), WritePng(spec));
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Depth(), 16);
}

} // namespace

} // namespace test

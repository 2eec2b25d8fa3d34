// SPDX-License-Identifier: MIT
//
// JPEG files that are cut off, damaged or too large.
#include "tests/decoders/JpegFiles.h"
#include "tests/support/ImageRules.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/PictureRows.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

namespace test
{

namespace
{

constexpr SInt32 kSide = 160;

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornJPEG");
    return bundle;
}

JpegSpec Square()
{
    return {.width = kSide, .height = kSide};
}

Bytes Half(const Bytes& file)
{
    return {file.begin(), file.begin() + static_cast<ptrdiff_t>(file.size() / 2)};
}

TEST(JpegDamage, KeepsWhatArrivedOfATruncatedFile)
{
    for (const bool isArithmetic : {false, true}) {
        JpegSpec spec = Square();
        spec.isArithmetic = isArithmetic;
        const Bytes file = WriteJpeg(spec);
        HostedImage image(Bundle(), Half(file));
        EXPECT_EQ(image.Decode(), kDataNotAvailableErr);
        EXPECT_TRUE(image.WasTold("renderingDone 1207"));
        EXPECT_GE(CommonRows(image.Display(kSide, kSide), ReadJpeg(file)), kSide / 4);
    }
}

TEST(JpegDamage, LeavesRowsAsTheyAreWhoseBytesDidNotArrive)
{
    HostedImage image(Bundle(), Half(WriteJpeg(Square())));
    image.Decode();
    EXPECT_LT(DrawnRows(image.Display(kSide, kSide), kWhitePage).second, kSide * 3 / 4);
}

TEST(JpegDamage, ShowsAllOfATruncatedProgressiveImageAsFarAsItsScansCame)
{
    JpegSpec spec = Square();
    spec.isProgressive = true;
    const Bytes file = WriteJpeg(spec);
    // In the middle of the fourth scan.
    const size_t size = (FindMarker(file, 0xDA, 4) + FindMarker(file, 0xDA, 5)) / 2;
    Bytes part(file.begin(), file.begin() + static_cast<ptrdiff_t>(size));
    HostedImage image(Bundle(), part);
    EXPECT_EQ(image.Decode(), kDataNotAvailableErr);
    part.insert(part.end(), {0xFF, 0xD9});
    EXPECT_EQ(image.Display(kSide, kSide), ReadJpeg(part));
}

TEST(JpegDamage, ShowsTheScansBeforeOneThatCannotBeReadHoweverTheyArrive)
{
    JpegSpec spec = Square();
    spec.isProgressive = true;
    for (const int number : {2, 4}) {
        Bytes file = WriteJpeg(spec);
        const size_t scan = FindMarker(file, 0xDA, number);
        Bytes before(file.begin(), file.begin() + static_cast<ptrdiff_t>(scan));
        before.insert(before.end(), {0xFF, 0xD9});
        file[scan + 4] = 9; // components
        for (const SInt32 piece : {100000, 4096, 500}) {
            HostedImage image(Bundle(), file);
            image.ArriveInPieces(piece);
            EXPECT_EQ(image.Decode(), kVornErrRenderFailed);
            EXPECT_EQ(image.Display(kSide, kSide), ReadJpeg(before))
                << "scan " << number << ", " << piece << " bytes at a time";
        }
    }
}

TEST(JpegDamage, ShowsAShortFirstScanTheSameHoweverItArrivesBeforeOneThatCannotBeRead)
{
    JpegSpec spec = Square();
    spec.isProgressive = true;
    Bytes file = WriteJpeg(spec);
    const size_t second = FindMarker(file, 0xDA, 2);
    const size_t shortEnd = FindMarker(file, 0xDA, 1) + 100;
    file[second + 4] = 9; // components
    file.erase(file.begin() + static_cast<ptrdiff_t>(shortEnd),
               file.begin() + static_cast<ptrdiff_t>(second));
    HostedImage atOnce(Bundle(), file);
    EXPECT_EQ(atOnce.Decode(), kVornErrRenderFailed);
    HostedImage inPieces(Bundle(), file);
    // First up to where the second scan is seen to begin.
    const auto all = static_cast<SInt32>(file.size());
    inPieces.host.arrivals = {0, static_cast<SInt32>(shortEnd + 2), all};
    EXPECT_EQ(inPieces.Decode(), kVornErrRenderFailed);
    EXPECT_EQ(atOnce.Display(kSide, kSide), inPieces.Display(kSide, kSide));
}

TEST(JpegDamage, IsToldAsItWasThoughTheHostFailsWhenTheScansAreReadAgain)
{
    JpegSpec spec = Square();
    spec.isProgressive = true;
    Bytes file = WriteJpeg(spec);
    file[FindMarker(file, 0xDA, 4) + 4] = 9; // components
    HostedImage image(Bundle(), file);
    image.host.onGetData = [&] {
        if (image.host.requests.back().offset == 0 && image.host.requests.size() > 2)
            image.host.failure = ioErr;
    };
    EXPECT_EQ(image.Decode(), kVornErrRenderFailed);
    EXPECT_EQ(image.host.failure, ioErr);
}

TEST(JpegDamage, DoesNotMindThatOnlyTheEndMarkIsMissing)
{
    Bytes file = WriteJpeg(Square());
    const Picture whole = ReadJpeg(file);
    file.resize(file.size() - 2);
    HostedImage image(Bundle(), file);
    EXPECT_EQ(image.Decode(), 0);
    EXPECT_EQ(image.Display(kSide, kSide), whole);
}

TEST(JpegDamage, SaysThatThereIsNothingOfAFileWithoutAHeader)
{
    const Bytes file = WriteJpeg(Square());
    for (const size_t size : {size_t{0}, size_t{1}, size_t{20}, FindMarker(file, 0xC0) + 5}) {
        HostedImage image(Bundle(),
                          Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(size)));
        EXPECT_EQ(image.Decode(), kVornErrImageFailed);
        EXPECT_TRUE(image.WasTold("renderingDone 1208")) << size;
        EXPECT_EQ(image.Depth(), 0);
    }
}

TEST(JpegDamage, RefusesWhatIsNoJpeg)
{
    HostedImage image(Bundle(), Bytes(5000, 'x'));
    EXPECT_EQ(image.Decode(), kVornErrImageFailed);
    EXPECT_TRUE(image.WasTold("renderingDone 1206"));
}

TEST(JpegDamage, ShowsWhatTheLibraryMakesOfDamagedScansAndTellsOfIt)
{
    JpegSpec spec = Square();
    spec.restartInterval = 4;
    Bytes file = WriteJpeg(spec);
    for (size_t i = 0; i < 40; ++i)
        file[file.size() / 2 + i] = 0x5A;
    HostedImage image(Bundle(), file);
    EXPECT_EQ(image.Decode(), kVornErrRenderFailed);
    EXPECT_EQ(image.Display(kSide, kSide), ReadJpeg(file));
}

TEST(JpegDamage, GivesUpAnEndlessRowOfScans)
{
    JpegSpec spec = Square();
    spec.isProgressive = true;
    const Bytes file = WriteJpeg(spec);
    const auto last = static_cast<ptrdiff_t>(FindMarker(file, 0xDA, 10));
    const Bytes scan(file.begin() + last, file.end() - 2);
    Bytes many(file.begin(), file.begin() + last);
    for (int i = 0; i < 600; ++i)
        many.insert(many.end(), scan.begin(), scan.end());
    many.insert(many.end(), {0xFF, 0xD9});
    HostedImage image(Bundle(), many);
    EXPECT_EQ(image.Decode(), kVornErrRenderFailed);
}

TEST(JpegDamage, SurvivesAnyChange)
{
    for (const bool isProgressive : {false, true}) {
        const Bytes file =
            WriteJpeg({.isProgressive = isProgressive, .restartInterval = 5, .comment = "text"});
        EXPECT_GT(CountFailuresOfChangedFiles(Bundle(), {file, 67, 53}, 5, 300), 50);
    }
}

TEST(JpegDamage, LeavesNothingBehind)
{
    const Bytes file = WriteJpeg({.colorSpace = JCS_GRAYSCALE, .sampling = 1});
    ExpectNothingLeftOfParts(Bundle(), {file, 67, 53}, 10);
}

TEST(JpegLimits, RefuseAnImageThatNeedsMore)
{
    const MemoryLimit limit(kSide * kSide * 4 - 1);
    HostedImage image(Bundle(), WriteJpeg(Square()));
    EXPECT_EQ(image.Decode(), memFullErr);
    EXPECT_EQ(image.Depth(), 0);
    EXPECT_FALSE(image.WasTold("gotRect"));
}

TEST(JpegLimits, CountWhatAProgressiveImageTakesBesideItsFrame)
{
    JpegSpec spec = Square();
    const MemoryLimit limit(kSide * kSide * 4);
    HostedImage sequential(Bundle(), WriteJpeg(spec));
    EXPECT_EQ(sequential.Decode(), 0);
    spec.isProgressive = true;
    HostedImage progressive(Bundle(), WriteJpeg(spec));
    EXPECT_EQ(progressive.Decode(), memFullErr);
}

TEST(JpegLimits, RefuseRowsThatRowBytesCannotHold)
{
    HostedImage tooWide(Bundle(), WriteJpeg({.width = 16384, .height = 8}));
    EXPECT_EQ(tooWide.Decode(), memFullErr);
    HostedImage wide(Bundle(), WriteJpeg({.width = 16383, .height = 8}));
    EXPECT_EQ(wide.Decode(), 0);
}

} // namespace

} // namespace test

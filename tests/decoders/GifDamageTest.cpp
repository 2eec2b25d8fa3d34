// SPDX-License-Identifier: MIT
//
// GIF files that are cut off, damaged or too large.
#include "tests/decoders/GifTest.h"
#include "toolbox/Errors.h"

#include <cstdlib>
#include <random>

using namespace test;

namespace
{

const GifColorList kColors = {kBlack, kRed, kGreen, kWhite};

GifImage Plain(UInt16 width, UInt16 height, char index)
{
    return {0, 0, width, height, std::string(size_t{width} * height, index)};
}

GifImage WithoutRows(GifImage image, int rows)
{
    image.indices.resize(image.indices.size() - static_cast<size_t>(rows) * image.width);
    return image;
}

// An image of codes as they stand there.
std::string Record(char width, char height, char codeSize, const std::string& codes)
{
    return std::string{',', 0, 0, 0, 0, width, 0, height, 0, 0, codeSize} +
           static_cast<char>(codes.size()) + codes + '\0';
}

// The memory that an image may take, for the length of a test.
class MemoryLimit
{
public:
    explicit MemoryLimit(const char* bytes) { setenv("VORN_IMAGE_BYTES", bytes, 1); }
    ~MemoryLimit() { unsetenv("VORN_IMAGE_BYTES"); }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;
};

class GifDamage : public GifTest
{
protected:
    // As the host was told.
    OSErr ToldError() { return Image().finalError; }
};

} // namespace

TEST_F(GifDamage, FailsWithoutAnyData)
{
    Decode("");
    EXPECT_EQ(ToldError(), kVornErrImageNoData);
    EXPECT_EQ(FrameCount(), 0);
}

TEST_F(GifDamage, FailsWhereTheDataAreNoGif)
{
    EXPECT_EQ(Decode("This is not an image, but a text."), kVornErrImageFailed);
    EXPECT_EQ(ToldError(), kVornErrImageFailed);
}

TEST_F(GifDamage, FailsWhereThereIsNoFrame)
{
    EXPECT_EQ(Decode(GifBuilder(4, 4, kColors).Bytes()), kVornErrImageFailed);
}

TEST_F(GifDamage, FailsForWantOfDataInTheHeader)
{
    Decode(GifBuilder(4, 4, kColors).Bytes().substr(0, 16));
    EXPECT_EQ(ToldError(), kVornErrImageNoData);
}

TEST_F(GifDamage, KeepsTheRowsOfAFileThatIsCutOff)
{
    constexpr UInt16 kSide = 64;
    std::mt19937 random(1);
    GifImage image = Plain(kSide, kSide, 0);
    for (char& index : image.indices)
        index = static_cast<char>(random() & 3);
    const std::string file = GifBuilder(kSide, kSide, kColors).Image(image).Bytes();
    EXPECT_EQ(Decode(file.substr(0, file.size() / 2)), kDataNotAvailableErr);
    const Pixels pixels = Frame(0).pixels;
    EXPECT_EQ(pixels[0], kColors[static_cast<UInt8>(image.indices[0])]);
    EXPECT_EQ(pixels[5 * kSide + 3], kColors[static_cast<UInt8>(image.indices[5 * kSide + 3])]);
    EXPECT_EQ(pixels.back(), kNoColor);
}

TEST_F(GifDamage, ShowsNeverLessOfALongerPieceOfAFile)
{
    const std::string file = GifBuilder(3, 3, kColors)
                                 .Comment("x")
                                 .Image({0, 0, 3, 3, std::string("\1\2\3\1\2\3\1\2\3")})
                                 .Control({1, 5, 2})
                                 .Image({1, 1, 2, 2, std::string("\1\2\3\1")})
                                 .Bytes();
    SInt32 frames = 0;
    for (size_t length = 0; length <= file.size(); ++length) {
        const OSErr err = Decode(file.substr(0, length));
        EXPECT_GE(FrameCount(), frames) << length;
        frames = FrameCount();
        const bool isWhole = length + 1 >= file.size(); // but for the trailer
        EXPECT_TRUE(err == 0 || !isWhole) << length;
    }
    EXPECT_EQ(frames, 2);
}

TEST_F(GifDamage, KeepsAFrameThatLacksRowsAndReadsOn)
{
    EXPECT_EQ(Decode(GifBuilder(2, 3, kColors)
                         .Image(WithoutRows(Plain(2, 3, 1), 1))
                         .Image(Plain(2, 3, 2))
                         .Bytes()),
              kVornErrRenderFailed);
    ASSERT_EQ(FrameCount(), 2);
    EXPECT_EQ(Frame(0).pixels, (Pixels{kRed, kRed, kRed, kRed, kNoColor, kNoColor}));
    EXPECT_EQ(Frame(1).pixels, Pixels(6, kGreen));
}

TEST_F(GifDamage, ReadsOnWhereDataEndBeforeTheirEndIsTold)
{
    EXPECT_EQ(Decode(GifBuilder(2, 1, kColors)
                         .Raw(Record(2, 1, 2, "\x44")) // to clear, 0
                         .Image(Plain(2, 1, 2))
                         .Bytes()),
              kVornErrRenderFailed);
    ASSERT_EQ(FrameCount(), 2);
    EXPECT_EQ(Frame(0).pixels, Pixels(2, kNoColor));
    EXPECT_EQ(Frame(1).pixels, Pixels(2, kGreen));
}

TEST_F(GifDamage, ReadsOnBehindACodeThatCannotBe)
{
    EXPECT_EQ(Decode(GifBuilder(1, 2, kColors)
                         .Raw(Record(1, 2, 2, "\xCC\x01")) // to clear, 1, 7
                         .Image(Plain(1, 2, 2))
                         .Bytes()),
              kVornErrRenderFailed);
    ASSERT_EQ(FrameCount(), 2);
    EXPECT_EQ(Frame(0).pixels, (Pixels{kRed, kNoColor}));
    EXPECT_EQ(Frame(1).pixels, Pixels(2, kGreen));
}

TEST_F(GifDamage, RefusesASizeThatCodesCannotHave)
{
    for (const char size : {'\0', '\x0C'}) {
        EXPECT_EQ(Decode(GifBuilder(1, 1, kColors).Raw(Record(1, 1, size, "\4")).Bytes()),
                  kVornErrImageFailed);
        EXPECT_EQ(FrameCount(), 0) << int{size};
    }
}

TEST_F(GifDamage, MakesTheMissingRowsOfALaterFrameTransparent)
{
    Decode(GifBuilder(2, 3, kColors)
               .Image(Plain(2, 3, 1))
               .Image(WithoutRows(Plain(2, 3, 2), 2))
               .Bytes());
    EXPECT_EQ(Frame(1).pixels, (Pixels{kGreen, kGreen, kNoColor, kNoColor, kNoColor, kNoColor}));
}

TEST_F(GifDamage, AnimatesWhatThereIsOfACutOffAnimation)
{
    const std::string file = GifBuilder(2, 2, kColors)
                                 .Repeats(0)
                                 .Image(Plain(2, 2, 1))
                                 .Image(Plain(2, 2, 2))
                                 .Image(Plain(2, 2, 3))
                                 .Bytes();
    EXPECT_EQ(Decode(file.substr(0, file.size() - 8)), kDataNotAvailableErr);
    EXPECT_EQ(FrameCount(), 3);
    EXPECT_TRUE(Image().looping);
    EXPECT_EQ(Image().loopCount, 0);
}

TEST_F(GifDamage, FailsAtARecordThatThereIsNot)
{
    EXPECT_EQ(Decode(GifBuilder(1, 1, kColors).Image(Plain(1, 1, 1)).Raw("?").Bytes()),
              kVornErrRenderFailed);
    EXPECT_EQ(FrameCount(), 1);
}

TEST_F(GifDamage, SurvivesAnyByteChanged)
{
    const std::string file = GifBuilder(5, 5, kColors)
                                 .Repeats(1)
                                 .Image(Plain(5, 5, 1))
                                 .Control({3, 4, 0})
                                 .Image(Plain(5, 5, 2))
                                 .Bytes();
    for (size_t at = 6; at < file.size(); ++at) {
        for (const int change : {0x01, 0x10, 0x80, 0xFF}) {
            std::string damaged = file;
            damaged[at] = static_cast<char>(damaged[at] ^ change);
            Decode(damaged);
            EXPECT_LE(FrameCount(), 3);
        }
    }
}

TEST_F(GifDamage, PassesAnErrorOfTheHostOnAndKeepsTheRows)
{
    std::mt19937 random(1);
    GifImage image = Plain(50, 50, 0);
    for (char& index : image.indices)
        index = static_cast<char>(random() & 3);
    const std::string file = GifBuilder(50, 50, kColors).Image(image).Bytes();
    host_.ends = false;
    host_.onGetData = [this] {
        if (host_.arrivals.empty())
            host_.failure = ioErr;
    };
    EXPECT_EQ(DecodeArriving(file, {800, 0, 0}), ioErr);
    EXPECT_EQ(Frame(0).pixels[0], kColors[static_cast<UInt8>(image.indices[0])]);
}

TEST_F(GifDamage, RefusesACanvasThatCoordinatesCannotReach)
{
    EXPECT_EQ(Decode(GifBuilder(32768, 1, kColors).Image(Plain(1, 1, 1)).Bytes()), memFullErr);
    EXPECT_EQ(FrameCount(), 0);
    EXPECT_EQ(host_.told.at(0), "renderingDone -108"); // no size was reported
}

TEST_F(GifDamage, RefusesACanvasThatAFirstImageMakesTooLarge)
{
    GifImage image = Plain(1, 1, 1);
    image.left = 40000;
    EXPECT_EQ(Decode(GifBuilder(1, 1, kColors).Image(image).Bytes()), memFullErr);
}

TEST_F(GifDamage, RefusesAnImageThatTakesMoreMemoryThanItMay)
{
    const MemoryLimit limit("10000");
    EXPECT_EQ(Decode(GifBuilder(100, 100, kColors).Image(Plain(1, 1, 1)).Bytes()), memFullErr);
    EXPECT_EQ(FrameCount(), 0);
}

TEST_F(GifDamage, KeepsTheFramesThatTheMemoryIsEnoughFor)
{
    const MemoryLimit limit("12000"); // 100 rows of 100 bytes and 16 of mask, and not that twice
    EXPECT_EQ(Decode(GifBuilder(100, 100, kColors)
                         .Image(Plain(100, 100, 1))
                         .Image(Plain(100, 100, 2))
                         .Bytes()),
              memFullErr);
    EXPECT_EQ(FrameCount(), 1);
    EXPECT_FALSE(Image().looping);
}

TEST_F(GifDamage, EndsWithTheLastFrameThatAnIndexReaches)
{
    GifBuilder gif(1, 1, kColors);
    for (int i = 0; i < 32768; ++i)
        gif.Image(Plain(1, 1, 1));
    EXPECT_EQ(Decode(gif.Bytes()), memFullErr);
    EXPECT_EQ(FrameCount(), 32767);
}

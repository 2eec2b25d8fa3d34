// SPDX-License-Identifier: MIT
#include "src/image/PixelWriting.h"
#include "tests/image/PixelMemory.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <random>
#include <string>

namespace
{

using test::Bytes;
using test::PixelMemory;

// What one call is given.
struct Conversion {
    const UInt8* samples;
    SInt16 count;
    SInt16 row;
    SInt32 columnMask;
};

struct RowConverter {
    std::string name;
    int depth;
    int sampleBytes; // a pixel
    bool writesMask;
    bool isInterlaced;
    std::function<void(PixelWriteState*, PixelWriteState*, const Conversion&)> call;
    // The bytes of a pixel whose samples stand at `at`.
    std::function<Bytes(const UInt8* at)> pixel;
};

void PrintTo(const RowConverter& converter, std::ostream* out)
{
    *out << converter.name;
}

// The five top bits of each sample, put together as a number.
Bytes Pixel555(int red, int green, int blue)
{
    const int pixel = red / 8 * 1024 + green / 8 * 32 + blue / 8;
    return {static_cast<UInt8>(pixel / 256), static_cast<UInt8>(pixel % 256)};
}

Bytes ColorOf(const UInt8* at)
{
    return Pixel555(at[0], at[1], at[2]);
}

Bytes GrayOf(const UInt8* at)
{
    return Pixel555(at[0], at[0], at[0]);
}

const std::vector<RowConverter>& Converters()
{
    static const std::vector<RowConverter> converters = {
        {"RGBTo16", 16, 3, false, false,
         [](PixelWriteState* state, PixelWriteState*, const Conversion& c) {
             RGBSampleTo16bitGWorld(state, c.samples, c.count, c.row, 0);
         },
         ColorOf},
        {"RGBxTo16", 16, 4, false, false,
         [](PixelWriteState* state, PixelWriteState*, const Conversion& c) {
             RGBSampleTo16bitGWorld(state, c.samples, c.count, c.row, 1);
         },
         ColorOf},
        {"RGBTo32", 32, 3, false, false,
         [](PixelWriteState* state, PixelWriteState*, const Conversion& c) {
             RGBSampleTo32bitGWorld(state, c.samples, c.count, c.row, 0);
         },
         [](const UInt8* at) {
             return Bytes{at[3], at[0], at[1], at[2]};
         }},
        {"RGBATo32", 32, 4, false, false,
         [](PixelWriteState* state, PixelWriteState*, const Conversion& c) {
             RGBSampleTo32bitGWorld(state, c.samples, c.count, c.row, 1);
         },
         [](const UInt8* at) {
             return Bytes{0xFF, at[0], at[1], at[2]};
         }},
        {"RGBATo16AndMask", 16, 4, true, false,
         [](PixelWriteState* state, PixelWriteState* mask, const Conversion& c) {
             RGBAlphaTo16bitGWorld(state, mask, c.samples, c.count, c.row);
         },
         ColorOf},
        {"GrayTo16", 16, 1, false, false,
         [](PixelWriteState* state, PixelWriteState*, const Conversion& c) {
             GrayscaleSampleTo16bitGWorld(state, c.samples, c.count, c.row);
         },
         GrayOf},
        {"InterlacedRGBTo16", 16, 3, false, true,
         [](PixelWriteState* state, PixelWriteState*, const Conversion& c) {
             InterlacedRGBTo16bitGWorld(state, c.samples, c.count, c.row, c.columnMask, 0);
         },
         ColorOf},
        {"InterlacedRGBxTo16", 16, 4, false, true,
         [](PixelWriteState* state, PixelWriteState*, const Conversion& c) {
             InterlacedRGBTo16bitGWorld(state, c.samples, c.count, c.row, c.columnMask, 1);
         },
         ColorOf},
        {"InterlacedRGBATo16AndMask", 16, 4, true, true,
         [](PixelWriteState* state, PixelWriteState* mask, const Conversion& c) {
             InterlacedRGBAlphaTo16bitGWorld(state, mask, c.samples, c.count, c.row, c.columnMask);
         },
         ColorOf},
    };
    return converters;
}

constexpr int kRowBytes = 512;
constexpr SInt32 kEveryColumn = 0xFF;

// Two pieces of pixel memory of a converter's depth, 3 rows of 100 pixels.
struct Target {
    explicit Target(int depth, UInt8 fill = 0)
        : image(depth, kRowBytes, fill), mask(depth, kRowBytes + 32, fill)
    {
        image.state.bounds = {0, 0, 3, 100};
        mask.state.bounds = {0, 0, 3, 100};
    }
    bool IsAll(UInt8 fill) const { return image.IsAll(fill) && mask.IsAll(fill); }
    PixelMemory image;
    PixelMemory mask;
};

void Put(PixelMemory& memory, SInt16 row, int column, const Bytes& pixel)
{
    const ptrdiff_t first =
        ptrdiff_t{row} * memory.state.rowBytes + column * static_cast<ptrdiff_t>(pixel.size());
    for (size_t k = 0; k < pixel.size(); ++k)
        memory.At(first + static_cast<ptrdiff_t>(k)) = pixel[k];
}

// What the contract of a converter says that a call writes.
void Expect(const RowConverter& converter, Target& target, const Conversion& call)
{
    for (int i = 0; i < call.count; ++i) {
        if (converter.isInterlaced && (call.columnMask & (1 << i % 8)) == 0)
            continue;
        const UInt8* const at = call.samples + i * converter.sampleBytes;
        Put(target.image, call.row, i, converter.pixel(at));
        if (converter.writesMask)
            Put(target.mask, call.row, i, GrayOf(at + 3));
    }
}

class RowConversionTest : public testing::TestWithParam<RowConverter>
{
protected:
    static bool IsWritten(Target& target, SInt16 count, SInt16 row)
    {
        static const Bytes samples(1024, 0xFF);
        const Conversion call = {samples.data(), count, row, kEveryColumn};
        GetParam().call(&target.image.state, &target.mask.state, call);
        const bool isWritten = !target.image.IsAll(0);
        EXPECT_EQ(!target.mask.IsAll(0), isWritten && GetParam().writesMask);
        return isWritten;
    }
};

INSTANTIATE_TEST_SUITE_P(All, RowConversionTest, testing::ValuesIn(Converters()),
                         [](const auto& converter) { return converter.param.name; });

} // namespace

TEST_P(RowConversionTest, WritesUpToAsManyPixelsAsTheRightCoordinateSays)
{
    Target full(GetParam().depth);
    EXPECT_TRUE(IsWritten(full, 100, 0));
    Target over(GetParam().depth);
    EXPECT_FALSE(IsWritten(over, 101, 0));
}

TEST_P(RowConversionTest, ComparesWithTheRightCoordinateAndNotTheWidth)
{
    Target target(GetParam().depth);
    target.image.state.bounds = {0, 90, 3, 100}; // 10 wide.
    EXPECT_TRUE(IsWritten(target, 100, 0));
}

TEST_P(RowConversionTest, WritesTheRowAtTheBottomToo)
{
    Target last(GetParam().depth);
    EXPECT_TRUE(IsWritten(last, 4, 3));
    EXPECT_NE(last.image.At(3 * kRowBytes + 1), 0);
    Target over(GetParam().depth);
    EXPECT_FALSE(IsWritten(over, 4, 4));
}

TEST_P(RowConversionTest, ComparesWithTheBottomCoordinateAndNotTheHeight)
{
    Target target(GetParam().depth);
    target.image.state.bounds = {2, 0, 3, 100}; // 1 high.
    EXPECT_TRUE(IsWritten(target, 4, 3));
}

TEST_P(RowConversionTest, WritesNothingAtAnotherDepth)
{
    for (const int depth : {0, 1, 8, 15, 16, 24, 32}) {
        if (depth == GetParam().depth)
            continue;
        Target target(depth);
        EXPECT_FALSE(IsWritten(target, 4, 0)) << depth;
    }
}

TEST_P(RowConversionTest, TakesAnEmptyOrNegativeCountForNothing)
{
    for (const SInt16 count : std::initializer_list<SInt16>{0, -1, -17, -32768}) {
        Target target(GetParam().depth);
        EXPECT_FALSE(IsWritten(target, count, 0)) << count;
    }
}

TEST_P(RowConversionTest, LooksAtNoOffsets)
{
    Target target(GetParam().depth);
    target.image.state.rowOffset = 1;
    target.image.state.columnOffset = 1;
    EXPECT_TRUE(IsWritten(target, 1, 1));
    EXPECT_NE(target.image.At(kRowBytes + 1), 0);
}

TEST_P(RowConversionTest, WritesWhatAPixelByPixelModelWrites)
{
    std::mt19937 random(30);
    const auto draw = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    int written = 0;
    for (int round = 0; round < 4000; ++round) {
        const auto count = static_cast<SInt16>(draw(0, 101));
        // One readable byte behind the last pixel and no more: the sanitizers see to that.
        Bytes samples(static_cast<size_t>(count * GetParam().sampleBytes + 1));
        for (UInt8& sample : samples)
            sample = static_cast<UInt8>(random());
        const Conversion call = {samples.data(), count, static_cast<SInt16>(draw(0, 4)),
                                 static_cast<SInt32>(draw(0, 3) == 0 ? 0xFF : random())};
        const auto fill = static_cast<UInt8>(draw(0, 255));
        Target actual(GetParam().depth, fill);
        Target expected(GetParam().depth, fill);
        GetParam().call(&actual.image.state, &actual.mask.state, call);
        if (count <= 100 && call.row <= 3) {
            Expect(GetParam(), expected, call);
            ++written;
        }
        ASSERT_TRUE(actual.image.bytes == expected.image.bytes)
            << "round " << round << ' ' << count;
        ASSERT_TRUE(actual.mask.bytes == expected.mask.bytes) << "round " << round << ' ' << count;
    }
    EXPECT_GT(written, 2000); // The draw is of any use.
}

TEST(RGBSampleTo16bitGWorld, MakesOneWordOfTheTopFiveBits)
{
    Target target(16);
    const Bytes samples = {0xF8, 0x08, 0x10, 0x07, 0x47, 0xFF};
    RGBSampleTo16bitGWorld(&target.image.state, samples.data(), 2, 1, 0);
    EXPECT_EQ(target.image.At(kRowBytes), 0x7C);
    EXPECT_EQ(target.image.At(kRowBytes + 1), 0x22);
    EXPECT_EQ(target.image.At(kRowBytes + 2), 0x01);
    EXPECT_EQ(target.image.At(kRowBytes + 3), 0x1F);
}

TEST(RGBSampleTo16bitGWorld, WritesOneRowPastAZeroBasedPixelMap)
{
    Target target(16);
    const Bytes samples(3, 0xFF);
    RGBSampleTo16bitGWorld(&target.image.state, samples.data(), 1, target.image.state.bounds.bottom,
                           0);
    EXPECT_EQ(target.image.At(3 * kRowBytes), 0x7F);
    EXPECT_EQ(target.image.At(3 * kRowBytes + 1), 0xFF);
}

TEST(RGBSampleTo32bitGWorld, FirstByteIsTheNextPixelsRedAndAtTheEndTheByteBehindTheRow)
{
    Target target(32);
    const Bytes samples = {1, 2, 3, 4, 5, 6, 7};
    RGBSampleTo32bitGWorld(&target.image.state, samples.data(), 2, 0, 0);
    EXPECT_EQ(target.image.First(9), (Bytes{4, 1, 2, 3, 7, 4, 5, 6, 0}));
}

TEST(RGBSampleTo32bitGWorld, FirstByteIsFullWithAlphaWhateverTheAlpha)
{
    Target target(32);
    const Bytes samples = {1, 2, 3, 0, 4, 5, 6, 0x80, 0};
    RGBSampleTo32bitGWorld(&target.image.state, samples.data(), 2, 0, 1);
    EXPECT_EQ(target.image.First(9), (Bytes{0xFF, 1, 2, 3, 0xFF, 4, 5, 6, 0}));
}

TEST(RGBAlphaTo16bitGWorld, MakesADeepMaskWithoutThreshold)
{
    Target target(16);
    const Bytes samples = {0, 0, 0, 0xFF, 0, 0, 0, 0x80, 0, 0, 0, 0x08, 0, 0, 0, 0x07};
    RGBAlphaTo16bitGWorld(&target.image.state, &target.mask.state, samples.data(), 4, 0);
    EXPECT_EQ(target.mask.First(8), (Bytes{0x7F, 0xFF, 0x42, 0x10, 0x04, 0x21, 0, 0}));
}

TEST(RGBAlphaTo16bitGWorld, AddressesTheMaskByItsOwnRowBytes)
{
    Target target(16);
    const Bytes samples(4, 0xFF);
    RGBAlphaTo16bitGWorld(&target.image.state, &target.mask.state, samples.data(), 1, 2);
    EXPECT_EQ(target.mask.At(2 * (kRowBytes + 32)), 0x7F);
}

TEST(RGBAlphaTo16bitGWorld, LooksAtTheImagesBoundsAndDepthOnly)
{
    Target target(16);
    target.mask.state.bounds = {0, 0, 0, 0};
    target.mask.state.depth = 1;
    const Bytes samples(4, 0xFF);
    RGBAlphaTo16bitGWorld(&target.image.state, &target.mask.state, samples.data(), 1, 2);
    EXPECT_FALSE(target.mask.IsAll(0));
}

TEST(InterlacedRGBTo16bitGWorld, WritesTheColumnsOfTheMaskFromItsLowestBitOn)
{
    Target target(16);
    const Bytes samples(3 * 10, 0xFF);
    InterlacedRGBTo16bitGWorld(&target.image.state, samples.data(), 10, 0, 0x82, 0);
    for (int column = 0; column < 12; ++column) {
        const bool isWritten = column == 1 || column == 7 || column == 9;
        EXPECT_EQ(target.image.At(column * 2), isWritten ? 0x7F : 0) << column;
    }
}

TEST(InterlacedRGBTo16bitGWorld, WritesNothingForAMaskWithoutColumns)
{
    Target target(16);
    const Bytes samples(3 * 10, 0xFF);
    InterlacedRGBTo16bitGWorld(&target.image.state, samples.data(), 10, 0, ~0xFF, 0);
    EXPECT_TRUE(target.IsAll(0));
}

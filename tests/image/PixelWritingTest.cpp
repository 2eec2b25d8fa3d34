// SPDX-License-Identifier: MIT
#include "src/image/PixelWriting.h"
#include "tests/image/PixelMemory.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>

namespace
{

using test::Bytes;
using test::kEverywhere;
using test::PixelMemory;

// Rows 2 and 3, columns 4 to 7.
constexpr Rect kClip = {2, 4, 4, 8};

void Set(PixelMemory& memory, SInt16 x, UInt32 value)
{
    SetPixMapPixel(&memory.state, &kEverywhere, {0, x}, value);
}

SInt32 Get(PixelMemory& memory, SInt16 x)
{
    return GetPixMapPixel(&memory.state, {0, x});
}

void SetRow(PixelMemory& memory, SInt16 x, const Bytes& pixels)
{
    SetPixMapRowPixels(&memory.state, &kEverywhere, {0, x}, static_cast<SInt16>(pixels.size()),
                       pixels.data());
}

void SetMaskRow(PixelMemory& memory, SInt16 x, SInt16 transparent, const Bytes& pixels)
{
    SetMaskPixMapRowPixels(&memory.state, &kEverywhere, {0, x}, static_cast<SInt16>(pixels.size()),
                           transparent, pixels.data());
}

// The values as their bytes lie in memory.
void SetValues(PixelMemory& memory, SInt16 x, const std::vector<UInt32>& values)
{
    std::vector<SInt32> stored;
    for (const UInt32 value : values) {
        stored.push_back(std::bit_cast<SInt32>(
            std::to_array({static_cast<UInt8>(value >> 24), static_cast<UInt8>(value >> 16),
                           static_cast<UInt8>(value >> 8), static_cast<UInt8>(value)})));
    }
    SetPixMapRowValues(&memory.state, &kEverywhere, {0, x}, static_cast<SInt16>(stored.size()),
                       stored.data());
}

void SetIndices(PixelMemory& memory, SInt16 x, SInt16 count, const Bytes& packed)
{
    SetPixMapRowIndices(&memory.state, &kEverywhere, {0, x}, count, packed.data());
}

// Pixels that are not 0, where one byte is a pixel and a row.
Bytes AllSet(int count)
{
    return Bytes(static_cast<size_t>(count), 1);
}

} // namespace

TEST(SetPixMapPixel, Depth1SetsTheBitForAnyValueButZero)
{
    for (const UInt32 value : {1U, 2U, 0x80000000U}) {
        PixelMemory memory(1);
        Set(memory, 0, value);
        EXPECT_EQ(memory.At(0), 0x80) << value;
    }
}

TEST(SetPixMapPixel, Depth1ClearsTheBitForZero)
{
    PixelMemory memory(1, 8, 0xFF);
    Set(memory, 0, 0);
    EXPECT_EQ(memory.At(0), 0x7F);
}

TEST(SetPixMapPixel, Depth2SpillsIntoThePixelsBefore)
{
    PixelMemory memory(2);
    Set(memory, 2, 0xF);
    EXPECT_EQ(memory.At(0), 0x3C);
}

TEST(SetPixMapPixel, Depth2ReplacesItsOwnBitsOnly)
{
    PixelMemory memory(2, 8, 0xFF);
    Set(memory, 1, 1);
    EXPECT_EQ(memory.At(0), 0xDF);
}

TEST(SetPixMapPixel, Depth4SpillsFromOddColumnsIntoTheEvenNeighbour)
{
    PixelMemory memory(4);
    memory.At(0) = 0x20;
    Set(memory, 1, 0x1F);
    EXPECT_EQ(memory.At(0), 0x3F);
}

TEST(SetPixMapPixel, Depth4DropsWhatSpillsPastTheByteFromEvenColumns)
{
    PixelMemory memory(4);
    memory.At(0) = 0x05;
    Set(memory, 0, 0x1F);
    EXPECT_EQ(memory.First(2), (Bytes{0xF5, 0}));
    EXPECT_EQ(memory.At(-1), 0);
}

TEST(SetPixMapPixel, Depth8StoresTheLowByte)
{
    PixelMemory memory(8);
    Set(memory, 2, 0x12345678);
    EXPECT_EQ(memory.First(4), (Bytes{0, 0, 0x78, 0}));
}

TEST(SetPixMapPixel, Depth16StoresTheLowWordHighByteFirst)
{
    PixelMemory memory(16);
    Set(memory, 1, 0x12345678);
    EXPECT_EQ(memory.First(6), (Bytes{0, 0, 0x56, 0x78, 0, 0}));
}

TEST(SetPixMapPixel, Depth32StoresTheValueHighByteFirst)
{
    PixelMemory memory(32);
    Set(memory, 1, 0x12345678);
    EXPECT_EQ(memory.First(10), (Bytes{0, 0, 0, 0, 0x12, 0x34, 0x56, 0x78, 0, 0}));
}

TEST(SetPixMapPixel, AddsTheOffsetsAfterLookingAtTheClip)
{
    PixelMemory memory(8, 16);
    memory.state.rowOffset = -2;
    memory.state.columnOffset = 3;
    SetPixMapPixel(&memory.state, &kClip, {3, 5}, 0x77);
    EXPECT_EQ(memory.At(16 + 8), 0x77);
}

TEST(SetPixMapPixel, AddsTheRowOffsetInMoreThan16Bits)
{
    PixelMemory memory(8, 1, 0, 40000);
    memory.state.rowOffset = 10;
    SetPixMapPixel(&memory.state, &kEverywhere, {32766, 0}, 0x77);
    EXPECT_EQ(memory.At(32776), 0x77);
}

TEST(SetPixMapPixel, WrapsTheColumnAt16Bits)
{
    PixelMemory memory(1);
    memory.state.columnOffset = 3;
    SetPixMapPixel(&memory.state, &kEverywhere, {0, 32766}, 1);
    EXPECT_EQ(memory.At(-4096), 0x40); // Column -32767.
}

TEST(SetPixMapPixel, WritesInsideTheClipOnly)
{
    for (SInt16 v = 0; v < 6; ++v) {
        for (SInt16 h = 0; h < 12; ++h) {
            PixelMemory memory(8, 16);
            SetPixMapPixel(&memory.state, &kClip, {v, h}, 1);
            EXPECT_EQ(memory.IsAll(0), v < 2 || v > 3 || h < 4 || h > 7) << v << ' ' << h;
        }
    }
}

TEST(SetPixMapPixel, WritesNothingAtDepthsThatThereAreNot)
{
    for (const int depth : {0, 3, 5, 15, 24, 31, 33, 64, 255}) {
        PixelMemory memory(depth);
        Set(memory, 1, 0xFFFFFFFF);
        EXPECT_TRUE(memory.IsAll(0)) << depth;
    }
}

TEST(SetPixMapRowPixels, PacksBitsFromTheHighestOn)
{
    PixelMemory memory(1, 8, 0xFF);
    SetRow(memory, 6, {0, 9, 0, 0, 255, 0, 0, 0, 0, 1, 0});
    EXPECT_EQ(memory.First(4), (Bytes{0xFD, 0x21, 0x7F, 0xFF}));
}

TEST(SetPixMapRowPixels, PacksPairsOfBits)
{
    PixelMemory memory(2);
    SetRow(memory, 3, {1, 3, 2, 1, 0, 2});
    EXPECT_EQ(memory.First(4), (Bytes{0x01, 0xE4, 0x80, 0}));
}

TEST(SetPixMapRowPixels, PacksNibbles)
{
    PixelMemory memory(4);
    SetRow(memory, 1, {1, 2, 3, 4});
    EXPECT_EQ(memory.First(4), (Bytes{0x01, 0x23, 0x40, 0}));
}

TEST(SetPixMapRowPixels, SpillsWithinBytesAsSinglePixelsDo)
{
    PixelMemory nibbles(4);
    SetRow(nibbles, 0, {0x10, 0x21});
    EXPECT_EQ(nibbles.First(2), (Bytes{0x21, 0}));
    PixelMemory pairs(2);
    SetRow(pairs, 0, {0, 0, 0, 0x55});
    EXPECT_EQ(pairs.First(2), (Bytes{0x55, 0}));
}

TEST(SetPixMapRowPixels, CopiesBytes)
{
    PixelMemory memory(8);
    SetRow(memory, 1, {7, 8, 9});
    EXPECT_EQ(memory.First(5), (Bytes{0, 7, 8, 9, 0}));
}

TEST(SetPixMapRowPixels, WritesNothingAtDepth16)
{
    PixelMemory memory(16);
    SetRow(memory, 0, {7, 8, 9});
    EXPECT_TRUE(memory.IsAll(0));
}

TEST(SetPixMapRowPixels, WritesNothingAtDepth32OrDepthsThatThereAreNot)
{
    for (const int depth : {0, 3, 5, 7, 24, 32, 33, 255}) {
        PixelMemory memory(depth);
        SetRow(memory, 0, {7, 8, 9});
        EXPECT_TRUE(memory.IsAll(0)) << depth;
    }
}

TEST(SetPixMapRowPixels, TakesAnEmptyOrNegativeCountForNothing)
{
    for (const SInt16 count : std::initializer_list<SInt16>{0, -1, -8, -32768}) {
        for (const int depth : {1, 2, 4, 8}) {
            PixelMemory memory(depth);
            SetPixMapRowPixels(&memory.state, &kEverywhere, {0, 0}, count, AllSet(1).data());
            EXPECT_TRUE(memory.IsAll(0)) << depth << ' ' << count;
        }
    }
}

TEST(SetMaskPixMapRowPixels, ClearsTheBitsOfTheTransparentIndexAndSetsTheOthers)
{
    PixelMemory memory(1);
    memory.At(0) = 0xFF;
    SetMaskRow(memory, 0, 5, {5, 0, 5, 5, 4, 5, 5, 6, 1, 5});
    EXPECT_EQ(memory.First(3), (Bytes{0x49, 0x80, 0}));
}

TEST(SetMaskPixMapRowPixels, SetsTheWholeRowWhereNothingIsTransparent)
{
    for (const SInt16 transparent : std::initializer_list<SInt16>{-1, 256, -256, -251, 0x105}) {
        PixelMemory memory(1);
        SetMaskRow(memory, 0, transparent, {255, 0, 5, 5, 4, 255, 5, 6, 1, 5});
        EXPECT_EQ(memory.First(3), (Bytes{0xFF, 0xC0, 0})) << transparent;
    }
}

TEST(SetMaskPixMapRowPixels, DoesNotLookAtTheDepth)
{
    PixelMemory memory(8);
    SetMaskRow(memory, 1, 0, {1, 0, 1});
    EXPECT_EQ(memory.First(2), (Bytes{0x50, 0}));
}

TEST(SetPixMapRowValues, SetsABitForAnyByteOfTheValue)
{
    PixelMemory memory(1);
    SetValues(memory, 7, {0x01000000, 0, 0x00010000, 0x0100, 1, 0, 0, 0x80000000, 1, 0});
    EXPECT_EQ(memory.First(3), (Bytes{0x01, 0x73, 0}));
}

TEST(SetPixMapRowValues, SpillsWholeValuesAtDepth2)
{
    PixelMemory memory(2);
    SetValues(memory, 0, {0, 0, 0, 0x125, 0, 0x15});
    EXPECT_EQ(memory.First(3), (Bytes{0x25, 0x50, 0}));
}

TEST(SetPixMapRowValues, SpillsTheLowestByteAtDepth4)
{
    PixelMemory memory(4);
    SetValues(memory, 0, {0, 0x12345625, 0x12345678});
    EXPECT_EQ(memory.First(3), (Bytes{0x25, 0x80, 0}));
}

TEST(SetPixMapRowValues, StoresTheLowestByteAtDepth8)
{
    PixelMemory memory(8);
    SetValues(memory, 1, {0x12345678, 0x9ABCDEF0});
    EXPECT_EQ(memory.First(4), (Bytes{0, 0x78, 0xF0, 0}));
}

TEST(SetPixMapRowValues, StoresTheLowestWordAtDepth16)
{
    PixelMemory memory(16);
    SetValues(memory, 1, {0x12345678, 0x9ABCDEF0});
    EXPECT_EQ(memory.First(8), (Bytes{0, 0, 0x56, 0x78, 0xDE, 0xF0, 0, 0}));
}

TEST(SetPixMapRowValues, StoresTheBytesAsTheyLieInMemoryAtDepth32)
{
    PixelMemory memory(32);
    SetValues(memory, 1, {0x12345678});
    EXPECT_EQ(memory.First(9), (Bytes{0, 0, 0, 0, 0x12, 0x34, 0x56, 0x78, 0}));
}

TEST(SetPixMapRowValues, WritesNothingAtDepthsThatThereAreNot)
{
    for (const int depth : {0, 3, 15, 24, 31, 33, 255}) {
        PixelMemory memory(depth);
        SetValues(memory, 0, {0xFFFFFFFF, 0xFFFFFFFF});
        EXPECT_TRUE(memory.IsAll(0)) << depth;
    }
}

TEST(SetPixMapRowIndices, CopiesWholeBytesFromTheOneThatHoldsTheFirstColumn)
{
    const Bytes packed = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    PixelMemory bits(1);
    SetIndices(bits, 11, 9, packed);
    EXPECT_EQ(bits.First(4), (Bytes{0, 1, 2, 0}));
    PixelMemory pairs(2);
    SetIndices(pairs, 5, 5, packed);
    EXPECT_EQ(pairs.First(4), (Bytes{0, 1, 2, 0}));
    PixelMemory nibbles(4);
    SetIndices(nibbles, 3, 3, packed);
    EXPECT_EQ(nibbles.First(4), (Bytes{0, 1, 2, 0}));
    PixelMemory bytes(8);
    SetIndices(bytes, 1, 2, packed);
    EXPECT_EQ(bytes.First(4), (Bytes{0, 1, 2, 0}));
}

TEST(SetPixMapRowIndices, WritesNothingAtOtherDepths)
{
    for (const int depth : {0, 3, 16, 24, 32, 255}) {
        PixelMemory memory(depth);
        SetIndices(memory, 0, 4, {1, 2, 3, 4});
        EXPECT_TRUE(memory.IsAll(0)) << depth;
    }
}

TEST(SetPixMapRowIndices, TakesAnEmptyOrNegativeCountForNothing)
{
    for (const SInt16 count : std::initializer_list<SInt16>{0, -1, -8, -9, -32768}) {
        for (const int depth : {1, 2, 4, 8}) {
            PixelMemory memory(depth);
            SetIndices(memory, 0, count, {1});
            EXPECT_TRUE(memory.IsAll(0)) << depth << ' ' << count;
        }
    }
}

TEST(SetPixMapByteIndex, StoresTheByteThatHoldsTheColumn)
{
    const std::vector<std::pair<int, ptrdiff_t>> byteOfColumn23 = {
        {1, 2}, {2, 5}, {4, 11}, {8, 23}};
    for (const auto& [depth, byte] : byteOfColumn23) {
        PixelMemory memory(depth, 32);
        SetPixMapByteIndex(&memory.state, &kEverywhere, {0, 23}, 0xA5);
        EXPECT_EQ(memory.At(byte), 0xA5) << depth;
        memory.At(byte) = 0;
        EXPECT_TRUE(memory.IsAll(0)) << depth;
    }
}

TEST(SetPixMapByteIndex, WritesAtTheClipsRightWhereSinglePixelsAreNotWritten)
{
    PixelMemory memory(8, 16);
    SetPixMapPixel(&memory.state, &kClip, {2, kClip.right}, 1);
    EXPECT_TRUE(memory.IsAll(0));
    SetPixMapByteIndex(&memory.state, &kClip, {2, kClip.right}, 1);
    EXPECT_EQ(memory.At(2 * 16 + 8), 1);
}

TEST(SetPixMapByteIndex, WritesInsideTheClipOnly)
{
    for (SInt16 v = 0; v < 6; ++v) {
        for (SInt16 h = 0; h < 12; ++h) {
            PixelMemory memory(8, 16);
            SetPixMapByteIndex(&memory.state, &kClip, {v, h}, 1);
            EXPECT_EQ(memory.IsAll(0), v < 2 || v > 3 || h < 4 || h > 8) << v << ' ' << h;
        }
    }
}

TEST(SetPixMapByteIndex, AddsTheOffsets)
{
    PixelMemory memory(8, 16);
    memory.state.rowOffset = -2;
    memory.state.columnOffset = 3;
    SetPixMapByteIndex(&memory.state, &kClip, {3, 5}, 0x77);
    EXPECT_EQ(memory.At(16 + 8), 0x77);
}

TEST(SetPixMapByteIndex, WritesNothingAtOtherDepths)
{
    for (const int depth : {0, 3, 16, 24, 32, 255}) {
        PixelMemory memory(depth);
        SetPixMapByteIndex(&memory.state, &kEverywhere, {0, 0}, 1);
        EXPECT_TRUE(memory.IsAll(0)) << depth;
    }
}

TEST(GetPixMapPixel, CountsBitsFromTheLowestAgainstTheOrderOfWriting)
{
    for (SInt16 written = 0; written < 8; ++written) {
        PixelMemory memory(1);
        Set(memory, written, 1);
        for (SInt16 read = 0; read < 8; ++read)
            EXPECT_EQ(Get(memory, read), read == 7 - written ? 1 : 0) << written << ' ' << read;
    }
}

TEST(GetPixMapPixel, GivesBytesWithTheirSign)
{
    PixelMemory memory(8);
    memory.At(0) = 0xFF;
    memory.At(1) = 0x80;
    memory.At(2) = 0x7F;
    EXPECT_EQ(Get(memory, 0), -1);
    EXPECT_EQ(Get(memory, 1), -128);
    EXPECT_EQ(Get(memory, 2), 127);
}

TEST(GetPixMapPixel, GivesWordsWithoutSign)
{
    PixelMemory memory(16);
    Set(memory, 1, 0xFEDC);
    EXPECT_EQ(Get(memory, 1), 0xFEDC);
}

TEST(GetPixMapPixel, Gives32Bits)
{
    PixelMemory memory(32);
    Set(memory, 1, 0xFEDCBA98);
    EXPECT_EQ(static_cast<UInt32>(Get(memory, 1)), 0xFEDCBA98U);
}

TEST(GetPixMapPixel, GivesZeroAtOtherDepths)
{
    for (const int depth : {0, 2, 3, 4, 15, 24, 33, 255}) {
        PixelMemory memory(depth, 8, 0xFF);
        EXPECT_EQ(Get(memory, 0), 0) << depth;
    }
}

TEST(GetPixMapPixel, ReadsWhereTheOffsetsSay)
{
    PixelMemory memory(8, 16);
    memory.state.rowOffset = 2;
    memory.state.columnOffset = -1;
    memory.At(3 * 16 + 4) = 9;
    EXPECT_EQ(GetPixMapPixel(&memory.state, {1, 5}), 9);
}

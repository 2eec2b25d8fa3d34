// SPDX-License-Identifier: MIT
//
// The plain functions for code that holds only the object.
#include "src/datasource/ReadingFunctions.h"

#include "src/datasource/VornPointerDataSource.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <cstring>

using test::ErrorOf;

namespace
{

// An object over 100 bytes, each holding its own offset.
class ReadingFunctions : public testing::Test
{
protected:
    void SetUp() override
    {
        for (UInt8 offset = 0; offset < 100; ++offset)
            bytes[offset] = offset;
        plugin.dataSource = new VornPointerDataSource(bytes, sizeof bytes);
    }

    UInt8 bytes[100] = {};
    test::TestBundle bundle;
    test::TestPlugin plugin{bundle.Get()};
};

} // namespace

TEST_F(ReadingFunctions, ReadBlocksOfTheObjectsData)
{
    UInt8 buffer[60] = {};
    EXPECT_EQ(ReadBytes(&plugin, 3, buffer, true), noErr);
    EXPECT_EQ(std::memcmp(buffer, bytes, 3), 0);
    EXPECT_EQ(GetReadOffset(&plugin), 3);
    EXPECT_EQ(ReadBytes(&plugin, 60, buffer, false), kDataNotAvailableErr);
    EXPECT_EQ(plugin.dataSource->lastError, kDataNotAvailableErr);
    EXPECT_EQ(GetReadOffset(&plugin), 3);
    EXPECT_EQ(ReadBytes(&plugin, 60, buffer, true), kDataNotAvailableErr);
    EXPECT_EQ(GetReadOffset(&plugin), 40);
}

TEST_F(ReadingFunctions, TellHowManyBytesWereThere)
{
    UInt8 buffer[60] = {};
    SInt32 count = 60;
    EXPECT_EQ(ReadAvailableBytes(&plugin, &count, buffer, false), kDataNotAvailableErr);
    EXPECT_EQ(count, 40);
    EXPECT_EQ(GetReadOffset(&plugin), 0);
    EXPECT_EQ(ReadAvailableBytes(&plugin, &count, buffer, true), noErr);
    EXPECT_EQ(GetReadOffset(&plugin), 40);
}

TEST_F(ReadingFunctions, TheByteStreamAlwaysAdvances)
{
    UInt8 buffer[60] = {};
    SInt32 count = 10;
    EXPECT_EQ(ReadByteStream(&plugin, &count, buffer, false), noErr);
    EXPECT_EQ(GetReadOffset(&plugin), 10);
    EXPECT_EQ(ReadByteStream(&plugin, &count, buffer, true), noErr);
    EXPECT_EQ(GetReadOffset(&plugin), 20);
    count = 60;
    EXPECT_EQ(ReadByteStream(&plugin, &count, buffer, false), kDataNotAvailableErr);
    EXPECT_EQ(count, 20);
    EXPECT_EQ(GetReadOffset(&plugin), 40);
}

TEST_F(ReadingFunctions, ReadEveryKindOfNumber)
{
    UInt8 u8 = 9;
    char s8 = 9;
    UInt16 u16 = 0;
    SInt16 s16 = 0;
    UInt32 u32 = 0;
    SInt32 s32 = 0;
    UInt32 native = 0;
    ReadUChar(&plugin, &u8, true);
    ReadChar(&plugin, &s8, true);
    ReadUShort(&plugin, &u16, true);
    ReadShort(&plugin, &s16, true);
    ReadULong(&plugin, &u32, true);
    ReadLong(&plugin, &s32, true);
    ReadULongNative(&plugin, &native, false);
    EXPECT_EQ(u8, 0);
    EXPECT_EQ(s8, 1);
    EXPECT_EQ(u16, 0x0302);
    EXPECT_EQ(s16, 0x0504);
    EXPECT_EQ(u32, 0x09080706U);
    EXPECT_EQ(s32, 0x0D0C0B0A);
    EXPECT_EQ(std::memcmp(&native, bytes + 14, 4), 0);
    EXPECT_EQ(GetReadOffset(&plugin), 14);
}

TEST_F(ReadingFunctions, PassOnWhetherANumberAdvances)
{
    const auto movesBy = [&](auto read, auto number) {
        SkipToOffset(&plugin, 10);
        read(&plugin, &number, false);
        EXPECT_EQ(GetReadOffset(&plugin), 10);
        read(&plugin, &number, true);
        return GetReadOffset(&plugin) - 10;
    };
    EXPECT_EQ(movesBy(ReadUChar, UInt8{}), 1);
    EXPECT_EQ(movesBy(ReadChar, char{}), 1);
    EXPECT_EQ(movesBy(ReadUShort, UInt16{}), 2);
    EXPECT_EQ(movesBy(ReadShort, SInt16{}), 2);
    EXPECT_EQ(movesBy(ReadULong, UInt32{}), 4);
    EXPECT_EQ(movesBy(ReadLong, SInt32{}), 4);
    EXPECT_EQ(movesBy(ReadULongNative, UInt32{}), 4);
}

TEST_F(ReadingFunctions, MoveTheReadOffset)
{
    SkipBytes(&plugin, 7);
    EXPECT_EQ(GetReadOffset(&plugin), 7);
    SkipToOffset(&plugin, 20);
    EXPECT_EQ(GetReadOffset(&plugin), 20);
    SInt32 skipped = 0;
    SkipTo(&plugin, 25, &skipped, true);
    EXPECT_EQ(skipped, 5);
    EXPECT_EQ(GetReadOffset(&plugin), 25);
    SkipTo(&plugin, 30, &skipped, false);
    EXPECT_EQ(skipped, 5);
    EXPECT_EQ(GetReadOffset(&plugin), 25);
    SkipToOffsetFromBufferEnd(&plugin, 4);
    EXPECT_EQ(GetReadOffset(&plugin), 96);
}

TEST_F(ReadingFunctions, LetExceptionsThrough)
{
    SkipToOffset(&plugin, 98);
    UInt32 value = 0;
    EXPECT_EQ(ErrorOf([&] { ReadULong(&plugin, &value, true); }), kDataOutOfRangeErr);
    EXPECT_EQ(GetReadOffset(&plugin), 98);
    EXPECT_EQ(plugin.dataSource->lastError, kDataOutOfRangeErr);
}

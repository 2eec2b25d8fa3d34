// SPDX-License-Identifier: MIT
//
// The base class's reads and positions, over a source whose answers the test decides.
#include "src/datasource/VornDataSource.h"

#include "src/plugin/VornPluginABI.h"
#include "tests/plugin/VirtualSlot.h"
#include "tests/support/ErrorOf.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>

using test::ErrorOf;

namespace
{

// Gives out as many bytes as it has, and answers a code of the test's choice.
class StringDataSource : public VornDataSource
{
public:
    explicit StringDataSource(std::string content) : bytes(std::move(content))
    {
        dataSize = static_cast<SInt32>(bytes.size());
    }
    OSErr GetBytes(void* dest, SInt32 offset, SInt32* count) override
    {
        lastOffset = offset;
        *count = std::min(*count, std::max(0, dataSize - offset));
        std::memcpy(dest, bytes.data() + offset, static_cast<std::size_t>(*count));
        return answer;
    }
    UInt8* GetBytesDataPtr(SInt32 offset, SInt32 length) override
    {
        if (withoutPointers)
            return nullptr;
        if (offset + length > dataSize) {
            lastError = kDataOutOfRangeErr;
            throw lastError;
        }
        return reinterpret_cast<UInt8*>(bytes.data()) + offset;
    }
    OSErr FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                              unsigned char mustHaveAll) override
    {
        fetch = {dest, offset, *count, mustHaveAll != 0};
        dataSize += growth;
        if (thrown != noErr)
            throw thrown;
        return answer;
    }

    struct Fetch {
        void* dest;
        SInt32 offset;
        SInt32 count;
        bool mustHaveAll;
    };

    std::string bytes;
    OSErr answer = noErr;
    OSErr thrown = noErr;
    SInt32 growth = 0;
    bool withoutPointers = false;
    SInt32 lastOffset = -1;
    Fetch fetch{};
};

const std::string kAlphabet = "abcdefghijklmnopqrstuvwxyz";

} // namespace

TEST(DataSource, StartsAtTheFirstByteKnowingNothing)
{
    const StringDataSource source("");
    EXPECT_EQ(source.readOffset, 0);
    EXPECT_EQ(source.dataSize, 0);
    EXPECT_EQ(source.lastError, 0);
    EXPECT_EQ(source.dataComplete, 0);
}

TEST(DataSource, PreparingAndTerminatingDoNothingByThemselves)
{
    StringDataSource source(kAlphabet);
    source.SkipToOffset(3);
    source.PrepareDataSource();
    source.TerminateDataSource();
    EXPECT_EQ(source.readOffset, 3);
    EXPECT_EQ(source.dataSize, 26);
}

TEST(BlockReads, ReadAtTheReadOffset)
{
    StringDataSource source(kAlphabet);
    source.SkipToOffset(2);
    char buffer[4] = {};
    EXPECT_EQ(source.ReadBytes(3, buffer, false), noErr);
    EXPECT_STREQ(buffer, "cde");
    EXPECT_EQ(source.readOffset, 2);
}

TEST(BlockReads, ReadBytesAdvancesByWhatWasRead)
{
    StringDataSource source(kAlphabet);
    char buffer[32];
    source.ReadBytes(4, buffer, true);
    EXPECT_EQ(source.readOffset, 4);
    source.ReadBytes(30, buffer, true);
    EXPECT_EQ(source.readOffset, 26);
}

TEST(BlockReads, ReadAvailableBytesTellsTheCount)
{
    StringDataSource source(kAlphabet);
    source.SkipToOffset(20);
    char buffer[32];
    SInt32 count = 30;
    source.ReadAvailableBytes(&count, buffer, false);
    EXPECT_EQ(count, 6);
    EXPECT_EQ(source.readOffset, 20);
    source.ReadAvailableBytes(&count, buffer, true);
    EXPECT_EQ(source.readOffset, 26);
}

TEST(BlockReads, ReadByteStreamAdvancesWhateverItIsTold)
{
    StringDataSource source(kAlphabet);
    char buffer[32];
    SInt32 count = 5;
    source.ReadByteStream(&count, buffer, false);
    EXPECT_EQ(source.readOffset, 5);
    count = 30;
    source.ReadByteStream(&count, buffer, true);
    EXPECT_EQ(count, 21);
    EXPECT_EQ(source.readOffset, 26);
}

TEST(BlockReads, ReportTheResultAndKeepIt)
{
    StringDataSource source(kAlphabet);
    source.answer = kDataNotAvailableErr;
    char buffer[4];
    SInt32 count = 2;
    EXPECT_EQ(source.ReadBytes(2, buffer, false), kDataNotAvailableErr);
    EXPECT_EQ(source.lastError, kDataNotAvailableErr);
    source.answer = noErr;
    EXPECT_EQ(source.ReadAvailableBytes(&count, buffer, false), noErr);
    EXPECT_EQ(source.lastError, noErr);
    source.answer = ioErr;
    EXPECT_EQ(source.ReadByteStream(&count, buffer, false), ioErr);
    EXPECT_EQ(source.lastError, ioErr);
}

TEST(TypedReads, AreLittleEndian)
{
    StringDataSource source("\x34\x12"
                            "\xFF\xFF"
                            "\x78\x56\x34\x12"
                            "\xFE\xFF\xFF\xFF");
    UInt16 u16 = 0;
    SInt16 s16 = 0;
    UInt32 u32 = 0;
    SInt32 s32 = 0;
    source.ReadUShort(&u16, true);
    source.ReadShort(&s16, true);
    source.ReadULong(&u32, true);
    source.ReadLong(&s32, true);
    EXPECT_EQ(u16, 0x1234);
    EXPECT_EQ(s16, -1);
    EXPECT_EQ(u32, 0x12345678U);
    EXPECT_EQ(s32, -2);
    EXPECT_EQ(source.readOffset, 12);
}

TEST(TypedReads, TheNativeOneTakesTheBytesAsTheyLie)
{
    StringDataSource source("\x78\x56\x34\x12");
    UInt32 value = 0;
    source.ReadULongNative(&value, true);
    EXPECT_EQ(value, std::endian::native == std::endian::big ? 0x78563412U : 0x12345678U);
    EXPECT_EQ(source.readOffset, 4);
}

TEST(TypedReads, ReadSingleBytesWithAndWithoutSign)
{
    StringDataSource source("\xFE\xFE");
    UInt8 u8 = 0;
    char s8 = 0;
    source.ReadUChar(&u8, true);
    source.ReadChar(&s8, true);
    EXPECT_EQ(u8, 0xFE);
    EXPECT_EQ(static_cast<SInt8>(s8), -2);
    EXPECT_EQ(source.readOffset, 2);
}

TEST(TypedReads, WithoutAdvancingReadTheSameAgain)
{
    StringDataSource source(kAlphabet);
    UInt8 first = 0;
    UInt8 second = 0;
    source.ReadUChar(&first, false);
    source.ReadUChar(&second, false);
    EXPECT_EQ(first, 'a');
    EXPECT_EQ(second, 'a');
    EXPECT_EQ(source.readOffset, 0);
}

namespace
{

// One typed read of four bytes 0xF1, 0xF2, 0xF3, 0xF4, its result widened.
struct TypedRead {
    const char* name;
    SInt32 width;
    std::function<SInt64(VornDataSource&, unsigned char)> read;
    SInt64 expected;
};

template <class Number>
auto Reader(void (VornDataSource::*read)(Number*, unsigned char))
{
    return [read](VornDataSource& source, unsigned char advance) {
        Number number{};
        (source.*read)(&number, advance);
        return SInt64{number};
    };
}

constexpr SInt64 kNative = std::endian::native == std::endian::big ? 0xF1F2F3F4 : 0xF4F3F2F1;

const TypedRead kTypedReads[] = {
    {"ReadUChar", 1, Reader(&VornDataSource::ReadUChar), 0xF1},
    {"ReadChar", 1, Reader(&VornDataSource::ReadChar), SInt64{static_cast<char>(0xF1)}},
    {"ReadShort", 2, Reader(&VornDataSource::ReadShort), 0xF2F1 - 0x10000},
    {"ReadUShort", 2, Reader(&VornDataSource::ReadUShort), 0xF2F1},
    {"ReadLong", 4, Reader(&VornDataSource::ReadLong), 0xF4F3F2F1 - 0x100000000},
    {"ReadULong", 4, Reader(&VornDataSource::ReadULong), 0xF4F3F2F1},
    {"ReadULongNative", 4, Reader(&VornDataSource::ReadULongNative), kNative},
};

void PrintTo(const TypedRead& read, std::ostream* out)
{
    *out << read.name;
}

class EachTypedRead : public testing::TestWithParam<TypedRead>
{
protected:
    EachTypedRead() { source.SkipToOffset(1); }
    StringDataSource source{"\x01\xF1\xF2\xF3\xF4"};
};

} // namespace

TEST_P(EachTypedRead, AdvancesByItsWidth)
{
    EXPECT_EQ(GetParam().read(source, true), GetParam().expected);
    EXPECT_EQ(source.readOffset, 1 + GetParam().width);
}

TEST_P(EachTypedRead, StaysIfToldNotToAdvance)
{
    EXPECT_EQ(GetParam().read(source, false), GetParam().expected);
    EXPECT_EQ(GetParam().read(source, false), GetParam().expected);
    EXPECT_EQ(source.readOffset, 1);
}

INSTANTIATE_TEST_SUITE_P(OfTheSeven, EachTypedRead, testing::ValuesIn(kTypedReads),
                         [](const auto& given) { return given.param.name; });

TEST(TypedReads, ThrowAcrossTheEndAndStayWhereTheyWere)
{
    StringDataSource source("abc");
    source.SkipToOffset(1);
    UInt32 value = 7;
    EXPECT_EQ(ErrorOf([&] { source.ReadULong(&value, true); }), kDataOutOfRangeErr);
    EXPECT_EQ(source.lastError, kDataOutOfRangeErr);
    EXPECT_EQ(source.readOffset, 1);
    EXPECT_EQ(value, 7U);
}

TEST(TypedReads, LeaveTheLastErrorOfABlockReadAlone)
{
    StringDataSource source(kAlphabet);
    source.lastError = ioErr;
    UInt8 byte = 0;
    source.ReadUChar(&byte, true);
    EXPECT_EQ(source.lastError, ioErr);
}

TEST(TypedReads, ThrowIfTheSourceHasNoAddressToGive)
{
    StringDataSource source(kAlphabet);
    source.withoutPointers = true;
    UInt8 byte = 0;
    EXPECT_EQ(ErrorOf([&] { source.ReadUChar(&byte, true); }), kDataOutOfRangeErr);
    EXPECT_EQ(source.readOffset, 0);
}

TEST(Positions, AreNotChecked)
{
    StringDataSource source(kAlphabet);
    source.SkipBytes(40);
    EXPECT_EQ(source.readOffset, 40);
    source.SkipBytes(-50);
    EXPECT_EQ(source.readOffset, -10);
    source.SkipToOffset(INT32_MAX);
    source.SkipBytes(1);
    EXPECT_EQ(source.readOffset, INT32_MIN);
}

TEST(SkipTo, FindsAByteAndGoesBack)
{
    StringDataSource source(std::string("xAB\0y", 5));
    source.SkipToOffset(1);
    SInt32 skipped = -1;
    source.SkipTo(0, &skipped, false);
    EXPECT_EQ(skipped, 2);
    EXPECT_EQ(source.readOffset, 1);
}

TEST(SkipTo, StandsOnTheByteIfToldToAdvance)
{
    StringDataSource source(std::string("xAB\0y", 5));
    source.SkipToOffset(1);
    SInt32 skipped = -1;
    source.SkipTo(0, &skipped, true);
    EXPECT_EQ(skipped, 2);
    EXPECT_EQ(source.readOffset, 3);
}

TEST(SkipTo, SkipsNothingIfTheByteIsNext)
{
    StringDataSource source(kAlphabet);
    SInt32 skipped = -1;
    source.SkipTo('a', &skipped, true);
    EXPECT_EQ(skipped, 0);
    EXPECT_EQ(source.readOffset, 0);
}

namespace
{

// Answers "not yet" a few times before its one byte comes, as a stream does.
class LateDataSource : public StringDataSource
{
public:
    using StringDataSource::StringDataSource;
    OSErr GetBytes(void* dest, SInt32, SInt32*) override
    {
        if (--misses >= 0)
            return kDataNotAvailableErr;
        if (thrown != noErr)
            throw thrown;
        *static_cast<char*>(dest) = bytes[0];
        return noErr;
    }
    int misses = 0;
};

} // namespace

TEST(SkipTo, CountsReadsThatGotNothing)
{
    LateDataSource source("a");
    source.misses = 3;
    SInt32 skipped = -1;
    source.SkipTo('a', &skipped, true);
    EXPECT_EQ(skipped, 3);
    EXPECT_EQ(source.readOffset, 3);
}

TEST(SkipTo, LeavesTheResultOfItsLastRead)
{
    StringDataSource source(kAlphabet);
    source.answer = kDataNotAvailableErr;
    SInt32 skipped = -1;
    source.SkipTo('c', &skipped, true);
    EXPECT_EQ(source.lastError, kDataNotAvailableErr);
}

TEST(SkipTo, EndsIfAReadThrows)
{
    LateDataSource source("a");
    source.misses = 3;
    source.thrown = ioErr;
    SInt32 skipped = -1;
    EXPECT_EQ(ErrorOf([&] { source.SkipTo('a', &skipped, true); }), ioErr);
    EXPECT_EQ(skipped, -1);
}

TEST(SkipToOffsetFromBufferEnd, StandsBeforeTheEnd)
{
    StringDataSource source(std::string(100, 'x'));
    source.SkipToOffsetFromBufferEnd(4);
    EXPECT_EQ(source.readOffset, 96);
}

TEST(SkipToOffsetFromBufferEnd, AsksForNoBytesButMustHaveThem)
{
    StringDataSource source(kAlphabet);
    source.SkipToOffsetFromBufferEnd(4);
    EXPECT_EQ(source.fetch.dest, nullptr);
    EXPECT_EQ(source.fetch.offset, -4);
    EXPECT_EQ(source.fetch.count, 0);
    EXPECT_TRUE(source.fetch.mustHaveAll);
}

TEST(SkipToOffsetFromBufferEnd, UsesTheLengthThatIsKnownThen)
{
    StringDataSource source(std::string(100, 'x'));
    source.growth = 50;
    source.answer = kDataOutOfRangeErr;
    source.SkipToOffsetFromBufferEnd(10);
    EXPECT_EQ(source.readOffset, 140);
    EXPECT_EQ(source.lastError, kDataOutOfRangeErr);
}

TEST(SkipToOffsetFromBufferEnd, StaysWhereItIsIfTheFetchThrows)
{
    StringDataSource source(kAlphabet);
    source.SkipToOffset(5);
    source.thrown = kDataNotAvailableErr;
    EXPECT_EQ(ErrorOf([&] { source.SkipToOffsetFromBufferEnd(4); }), kDataNotAvailableErr);
    EXPECT_EQ(source.readOffset, 5);
}

// Where the virtual operations and the fields lie is part of the binary interface.
#ifdef VORN_KNOWS_VIRTUAL_SLOTS

TEST(DataSourceLayout, KeepsTheOrderOfTheVirtualOperations)
{
    EXPECT_EQ(test::VirtualSlot(&VornDataSource::PrepareDataSource), 2U);
    EXPECT_EQ(test::VirtualSlot(&VornDataSource::TerminateDataSource), 3U);
    EXPECT_EQ(test::VirtualSlot(&VornDataSource::GetBytes), 4U);
    EXPECT_EQ(test::VirtualSlot(&VornDataSource::GetBytesDataPtr), 5U);
    EXPECT_EQ(test::VirtualSlot(&VornDataSource::FetchDataFromSource), 6U);
}

#endif

TEST(DataSourceLayout, KeepsTheOrderOfTheFields)
{
    const StringDataSource source("");
    const void* const fields[] = {&source.readOffset, &source.dataSize, &source.lastError,
                                  &source.dataComplete};
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<>()));
}

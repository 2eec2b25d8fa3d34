// SPDX-License-Identifier: MIT
//
// What the two sources over memory share, tested on both, and what only the handle has.
#include "src/datasource/VornHandleDataSource.h"
#include "src/datasource/VornPointerDataSource.h"
#include "src/plugin/VornPluginABI.h"
#include "tests/support/ErrorOf.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

using test::ErrorOf;

namespace
{

std::vector<UInt8> Counting(SInt32 size)
{
    std::vector<UInt8> bytes(static_cast<std::size_t>(size));
    std::iota(bytes.begin(), bytes.end(), UInt8{0});
    return bytes;
}

Handle HandleWith(const std::vector<UInt8>& bytes)
{
    Handle handle = NewHandle(static_cast<Size>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), *handle);
    return handle;
}

class PointerMaker
{
public:
    explicit PointerMaker(SInt32 size) : bytes(Counting(size)), source(bytes.data(), size) {}
    VornDataSource& Source() { return source; }

private:
    std::vector<UInt8> bytes;
    VornPointerDataSource source;
};

class HandleMaker
{
public:
    explicit HandleMaker(SInt32 size) : handle(HandleWith(Counting(size))), source(handle, size) {}
    ~HandleMaker() { DisposeHandle(handle); }
    HandleMaker(const HandleMaker&) = delete;
    HandleMaker& operator=(const HandleMaker&) = delete;
    VornDataSource& Source() { return source; }

private:
    Handle handle;
    VornHandleDataSource source;
};

// 100 bytes, each holding its own offset.
template <class Maker>
class MemoryDataSource : public testing::Test
{
protected:
    OSErr Fetch(SInt32 offset, SInt32 count, bool mustHaveAll = false)
    {
        counted = count;
        std::fill(std::begin(buffer), std::end(buffer), UInt8{0xEE});
        return source.FetchDataFromSource(buffer, offset, &counted, mustHaveAll);
    }
    // Bytes copied to the buffer, which must be those from `offset` on.
    SInt32 Copied(SInt32 offset) const
    {
        SInt32 n = 0;
        while (n < 200 && buffer[n] == static_cast<UInt8>(offset + n) && offset + n < 100)
            ++n;
        for (SInt32 rest = n; rest < 200; ++rest)
            EXPECT_EQ(buffer[rest], 0xEE) << rest;
        return n;
    }

    Maker maker{100};
    VornDataSource& source = maker.Source();
    UInt8 buffer[200] = {};
    SInt32 counted = 0;
};

using Makers = testing::Types<PointerMaker, HandleMaker>;
TYPED_TEST_SUITE(MemoryDataSource, Makers);

} // namespace

TYPED_TEST(MemoryDataSource, KnowsItsSizeFromTheStart)
{
    EXPECT_EQ(this->source.dataSize, 100);
    EXPECT_EQ(this->source.readOffset, 0);
    EXPECT_EQ(this->source.lastError, 0);
}

TYPED_TEST(MemoryDataSource, CopiesARequestForLessThanHalfOfTheRest)
{
    EXPECT_EQ(this->Fetch(0, 10), noErr);
    EXPECT_EQ(this->counted, 10);
    EXPECT_EQ(this->Copied(0), 10);
}

TYPED_TEST(MemoryDataSource, CutsARequestForMoreThanHalfOfTheRest)
{
    EXPECT_EQ(this->Fetch(0, 60), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, 40);
    EXPECT_EQ(this->Copied(0), 40);
}

TYPED_TEST(MemoryDataSource, ServesExactlyHalfOfTheRest)
{
    EXPECT_EQ(this->Fetch(20, 40), noErr);
    EXPECT_EQ(this->counted, 40);
    EXPECT_EQ(this->Copied(20), 40);
}

TYPED_TEST(MemoryDataSource, HasNoRoomForItsLastByte)
{
    EXPECT_EQ(this->Fetch(99, 1), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, 0);
    EXPECT_EQ(this->Copied(99), 0);
}

TYPED_TEST(MemoryDataSource, TellsANegativeCountForARequestPastTheEnd)
{
    EXPECT_EQ(this->Fetch(50, 60), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, -10);
    EXPECT_EQ(this->Copied(50), 0);
}

TYPED_TEST(MemoryDataSource, LeavesTheCountAtTheEnd)
{
    EXPECT_EQ(this->Fetch(100, 7), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, 7);
    EXPECT_EQ(this->Fetch(INT32_MAX, 7), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, 7);
}

TYPED_TEST(MemoryDataSource, ReturnsARangeErrorForANegativeOffset)
{
    EXPECT_EQ(this->Fetch(-1, 7), kDataOutOfRangeErr);
    EXPECT_EQ(this->counted, 7);
    EXPECT_EQ(this->Fetch(-1, 7, true), kDataOutOfRangeErr);
    EXPECT_EQ(this->Copied(0), 0);
}

TYPED_TEST(MemoryDataSource, ThrowsWhatIsMissingIfItMustHaveAll)
{
    EXPECT_EQ(ErrorOf([&] { this->Fetch(0, 60, true); }), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, 40);
    EXPECT_EQ(ErrorOf([&] { this->Fetch(100, 7, true); }), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, 7);
    EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(this->Fetch(0, 10, true), noErr); }), noErr);
}

TYPED_TEST(MemoryDataSource, DoesNotWrapAroundForAHugeRequest)
{
    EXPECT_EQ(this->Fetch(99, INT32_MAX), kDataNotAvailableErr);
    EXPECT_EQ(this->counted, 1 - INT32_MAX);
    EXPECT_EQ(this->Copied(99), 0);
}

TYPED_TEST(MemoryDataSource, AFetchLeavesTheReadOffsetAndTheLastErrorAlone)
{
    this->Fetch(100, 7);
    EXPECT_EQ(this->source.readOffset, 0);
    EXPECT_EQ(this->source.lastError, noErr);
}

TYPED_TEST(MemoryDataSource, GetsBytesWithoutThrowing)
{
    SInt32 count = 60;
    EXPECT_EQ(this->source.GetBytes(this->buffer, 0, &count), kDataNotAvailableErr);
    EXPECT_EQ(count, 40);
}

TYPED_TEST(MemoryDataSource, BlockReadsReportAShortRead)
{
    EXPECT_EQ(this->source.ReadBytes(60, this->buffer, true), kDataNotAvailableErr);
    EXPECT_EQ(this->source.lastError, kDataNotAvailableErr);
    EXPECT_EQ(this->source.readOffset, 40);
}

TYPED_TEST(MemoryDataSource, ANegativeCountMovesTheReadOffsetBack)
{
    this->source.SkipToOffset(50);
    EXPECT_EQ(this->source.ReadBytes(60, this->buffer, true), kDataNotAvailableErr);
    EXPECT_EQ(this->source.readOffset, 40);
}

TYPED_TEST(MemoryDataSource, GivesTheAddressOfItsLastBytes)
{
    EXPECT_EQ(*this->source.GetBytesDataPtr(96, 4), 96);
    EXPECT_EQ(ErrorOf([&] { this->source.GetBytesDataPtr(97, 4); }), kDataOutOfRangeErr);
    EXPECT_EQ(this->source.lastError, kDataOutOfRangeErr);
}

TYPED_TEST(MemoryDataSource, RefusesAnAddressNearTheEndOfTheNumbers)
{
    EXPECT_EQ(ErrorOf([&] { this->source.GetBytesDataPtr(INT32_MAX, 4); }), kDataOutOfRangeErr);
}

TYPED_TEST(MemoryDataSource, DoesNotRefuseANegativeOffsetForAnAddress)
{
    const UInt8* start = this->source.GetBytesDataPtr(0, 4);
    EXPECT_EQ(this->source.GetBytesDataPtr(-4, 4) - start, -4);
    EXPECT_EQ(this->source.lastError, noErr);
}

TYPED_TEST(MemoryDataSource, SkipsFromTheEndThoughItHasNothingToAskFor)
{
    this->source.SkipToOffsetFromBufferEnd(4);
    EXPECT_EQ(this->source.readOffset, 96);
    EXPECT_EQ(this->source.lastError, kDataOutOfRangeErr);
}

TYPED_TEST(MemoryDataSource, ReadsNumbersUpToItsEnd)
{
    this->source.SkipToOffset(96);
    UInt32 value = 0;
    this->source.ReadULong(&value, true);
    EXPECT_EQ(value, 0x63626160U);
    EXPECT_EQ(ErrorOf([&] { this->source.ReadULong(&value, true); }), kDataOutOfRangeErr);
    EXPECT_EQ(this->source.readOffset, 100);
}

TYPED_TEST(MemoryDataSource, FetchesByTheRuleAtEveryOffsetAndCount)
{
    for (SInt32 offset = 0; offset < 100; ++offset) {
        for (SInt32 count = 1; count < 120; ++count) {
            const SInt32 room = 100 - offset - count;
            const bool whole = count <= room;
            ASSERT_EQ(this->Fetch(offset, count), OSErr(whole ? 0 : kDataNotAvailableErr));
            ASSERT_EQ(this->counted, whole ? count : room);
            ASSERT_EQ(this->Copied(offset), std::max(0, whole ? count : room));
        }
    }
}

TEST(PointerDataSource, CopiesOntoItself)
{
    std::vector<UInt8> bytes = Counting(20);
    VornPointerDataSource source(bytes.data(), 20);
    SInt32 count = 8;
    EXPECT_EQ(source.GetBytes(bytes.data() + 2, 0, &count), noErr);
    EXPECT_EQ(bytes[2], 0);
    EXPECT_EQ(bytes[9], 7);
}

TEST(PointerDataSource, AnEmptyOneHasNothing)
{
    VornPointerDataSource source(nullptr, 0);
    SInt32 count = 1;
    char byte = 0;
    EXPECT_EQ(source.GetBytes(&byte, 0, &count), kDataNotAvailableErr);
    EXPECT_EQ(ErrorOf([&] { source.GetBytesDataPtr(0, 1); }), kDataOutOfRangeErr);
}

TEST(PointerDataSource, LeavesTheBlockToItsOwner)
{
    std::vector<UInt8> bytes = Counting(4);
    {
        VornPointerDataSource source(bytes.data(), 4);
    }
    EXPECT_EQ(bytes, Counting(4));
}

TEST(HandleDataSource, EndsWhereAShrunkHandleEnds)
{
    Handle handle = HandleWith(Counting(100));
    VornHandleDataSource source(handle, 100);
    SetHandleSize(handle, 40);
    char buffer[100];
    SInt32 count = 30;
    EXPECT_EQ(source.GetBytes(buffer, 0, &count), kDataNotAvailableErr);
    EXPECT_EQ(count, 10);
    EXPECT_EQ(ErrorOf([&] { source.GetBytesDataPtr(37, 4); }), kDataOutOfRangeErr);
    EXPECT_EQ(*source.GetBytesDataPtr(36, 4), 36);
    DisposeHandle(handle);
}

TEST(HandleDataSource, EndsWhereItsSizeSaysInALargerHandle)
{
    Handle handle = HandleWith(Counting(100));
    VornHandleDataSource source(handle, 40);
    EXPECT_EQ(ErrorOf([&] { source.GetBytesDataPtr(37, 4); }), kDataOutOfRangeErr);
    DisposeHandle(handle);
}

TEST(HandleDataSource, FollowsABlockThatMoves)
{
    Handle handle = HandleWith(Counting(100));
    VornHandleDataSource source(handle, 100);
    SetHandleScramble(true);
    Handle other = NewHandle(10);
    EXPECT_EQ(*source.GetBytesDataPtr(50, 4), 50);
    SetHandleScramble(false);
    DisposeHandle(other);
    DisposeHandle(handle);
}

TEST(HandleDataSource, LeavesTheHandleToItsOwner)
{
    Handle handle = HandleWith(Counting(4));
    {
        VornHandleDataSource source(handle, 4);
    }
    EXPECT_EQ(GetHandleSize(handle), 4);
    DisposeHandle(handle);
}

TEST(HandleDataSource, WithoutAHandleItHasNothing)
{
    VornHandleDataSource source(nullptr, 100);
    SInt32 count = 1;
    char byte = 0;
    EXPECT_EQ(source.GetBytes(&byte, 0, &count), kDataNotAvailableErr);
    EXPECT_EQ(count, 1);
}

TEST(HandleDataSource, WithoutAHandleItHasNoAddress)
{
    VornHandleDataSource source(nullptr, 100);
    for (const auto& range : {std::pair{0, 0}, {-4, 4}, {-8, 4}, {0, 1}}) {
        source.lastError = noErr;
        EXPECT_EQ(ErrorOf([&] { source.GetBytesDataPtr(range.first, range.second); }),
                  kDataOutOfRangeErr);
        EXPECT_EQ(source.lastError, kDataOutOfRangeErr);
    }
}

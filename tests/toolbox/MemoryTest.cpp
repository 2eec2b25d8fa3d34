// SPDX-License-Identifier: MIT
#include "toolbox/memory/Memory.h"

#include "tests/toolbox/FailingOperations.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

constexpr SInt8 kLocked = static_cast<SInt8>(0x80);

std::string BytesOf(Handle handle)
{
    return {*handle, static_cast<size_t>(GetHandleSize(handle))};
}

Handle HandleWith(const std::string& bytes)
{
    const Handle handle = NewHandle(static_cast<Size>(bytes.size()));
    std::memcpy(*handle, bytes.data(), bytes.size());
    return handle;
}

TEST(Memory, ANewHandleHasTheSizeAskedFor)
{
    const Handle handle = NewHandle(16384);
    ASSERT_NE(nullptr, handle);
    EXPECT_EQ(noErr, MemError());
    EXPECT_EQ(16384, GetHandleSize(handle));
    DisposeHandle(handle);
}

TEST(Memory, AHandleOfNoBytesIsAHandle)
{
    const Handle handle = NewHandle(0);
    ASSERT_NE(nullptr, handle);
    EXPECT_NE(nullptr, *handle);
    EXPECT_EQ(0, GetHandleSize(handle));
    DisposeHandle(handle);
}

TEST(Memory, AClearHandleHoldsZeros)
{
    const Handle handle = NewHandleClear(100);
    EXPECT_EQ(std::string(100, '\0'), BytesOf(handle));
    DisposeHandle(handle);
}

TEST(Memory, ANegativeSizeIsAParameterError)
{
    EXPECT_EQ(nullptr, NewHandle(-1));
    EXPECT_EQ(paramErr, MemError());
    EXPECT_EQ(nullptr, NewPtr(-1));
    EXPECT_EQ(paramErr, MemError());
}

TEST(Memory, DisposingOfNullDoesNothing)
{
    DisposeHandle(nullptr);
    DisposePtr(nullptr);
    EXPECT_EQ(noErr, MemError());
}

TEST(Memory, ANullHandleHasNoSizeButAnError)
{
    EXPECT_EQ(0, GetHandleSize(nullptr));
    EXPECT_EQ(nilHandleErr, MemError());
}

TEST(Memory, ResizingKeepsWhatFitsTheSmallerSize)
{
    const Handle handle = HandleWith("spool");
    SetHandleSize(handle, 70000);
    EXPECT_EQ(70000, GetHandleSize(handle));
    EXPECT_EQ("spool", BytesOf(handle).substr(0, 5));
    SetHandleSize(handle, 3);
    EXPECT_EQ("spo", BytesOf(handle));
    DisposeHandle(handle);
}

TEST(Memory, ResizingToANegativeSizeChangesNothing)
{
    const Handle handle = HandleWith("spool");
    SetHandleSize(handle, -1);
    EXPECT_EQ(paramErr, MemError());
    EXPECT_EQ("spool", BytesOf(handle));
    DisposeHandle(handle);
}

TEST(Memory, ALockedBlockThatWouldHaveToMoveDoesNotGrow)
{
    const Handle handle = HandleWith("spool");
    HLock(handle);
    const Ptr before = *handle;
    SetHandleSize(handle, 1 << 20);
    EXPECT_EQ(memFullErr, MemError());
    EXPECT_EQ(before, *handle);
    EXPECT_EQ("spool", BytesOf(handle));
    DisposeHandle(handle);
}

TEST(Memory, ALockedBlockShrinksAndGrowsBackInPlace)
{
    const Handle handle = HandleWith("spool");
    HLock(handle);
    const Ptr before = *handle;
    SetHandleSize(handle, 2);
    SetHandleSize(handle, 5);
    EXPECT_EQ(noErr, MemError());
    EXPECT_EQ(before, *handle);
    EXPECT_EQ(5, GetHandleSize(handle));
    DisposeHandle(handle);
}

TEST(Memory, LockingShowsInBitSevenOfTheState)
{
    const Handle handle = NewHandle(1);
    EXPECT_EQ(0, HGetState(handle));
    HLock(handle);
    EXPECT_EQ(kLocked, HGetState(handle));
    HSetState(handle, 0);
    HLockHi(handle);
    EXPECT_EQ(kLocked, HGetState(handle));
    DisposeHandle(handle);
}

TEST(Memory, AStatePutBackIsTheStateBefore)
{
    const Handle handle = NewHandle(1);
    for (const SInt8 before : {SInt8{0}, kLocked}) {
        HSetState(handle, before);
        const SInt8 saved = HGetState(handle);
        HLockHi(handle);
        HSetState(handle, saved);
        EXPECT_EQ(before, HGetState(handle));
    }
    DisposeHandle(handle);
}

TEST(Memory, PlainBlocksAndHandlesAreCounted)
{
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    const SInt32 pointers = CountLiveObjects(kLivePointers);
    const Handle handle = NewHandle(10);
    const Ptr block = NewPtr(10);
    EXPECT_EQ(handles + 1, CountLiveObjects(kLiveHandles));
    EXPECT_EQ(pointers + 1, CountLiveObjects(kLivePointers));
    DisposeHandle(handle);
    DisposePtr(block);
    EXPECT_EQ(handles, CountLiveObjects(kLiveHandles));
    EXPECT_EQ(pointers, CountLiveObjects(kLivePointers));
}

TEST(Memory, BlockMoveDataMovesBetweenOverlappingAreas)
{
    char text[] = "abcdef";
    BlockMoveData(text, text + 2, 4);
    EXPECT_STREQ("ababcd", text);
    BlockMoveData(text, text, -1);
    EXPECT_EQ(paramErr, MemError());
}

TEST(Memory, AFailureToldByTheObserverComesThroughMemError)
{
    const FailingOperations failing(memFullErr);
    EXPECT_EQ(nullptr, NewHandle(10));
    EXPECT_EQ(nullptr, NewHandleClear(10));
    EXPECT_EQ(nullptr, NewPtr(10));
    EXPECT_EQ(memFullErr, MemError());
}

TEST(Memory, AFailedResizeLeavesTheBlockAsItWas)
{
    const Handle handle = HandleWith("spool");
    {
        const FailingOperations failing(memFullErr);
        SetHandleSize(handle, 100);
        EXPECT_EQ(memFullErr, MemError());
    }
    EXPECT_EQ("spool", BytesOf(handle));
    DisposeHandle(handle);
}

class ScrambledMemory : public testing::Test
{
protected:
    ScrambledMemory() { SetHandleScramble(true); }
    ~ScrambledMemory() override { SetHandleScramble(false); }
};

TEST_F(ScrambledMemory, EveryAllocationMovesUnlockedBlocksAndKeepsWhatTheyHold)
{
    const Handle moving = HandleWith("spool");
    for (int round = 0; round < 5; ++round) {
        const Ptr before = *moving;
        const Handle other = NewHandle(5);
        EXPECT_NE(before, *moving);
        EXPECT_EQ("spool", BytesOf(moving));
        DisposeHandle(other);
    }
    DisposeHandle(moving);
}

TEST_F(ScrambledMemory, EveryResizeMovesUnlockedBlocks)
{
    const Handle moving = HandleWith("spool");
    const Handle resized = NewHandle(5);
    const Ptr before = *moving;
    SetHandleSize(resized, 6);
    EXPECT_NE(before, *moving);
    EXPECT_EQ("spool", BytesOf(moving));
    DisposeHandle(resized);
    DisposeHandle(moving);
}

TEST_F(ScrambledMemory, LockedBlocksStayWhereTheyAre)
{
    const Handle locked = HandleWith("spool");
    HLock(locked);
    const Ptr before = *locked;
    const Handle other = NewHandle(5);
    EXPECT_EQ(before, *locked);
    DisposeHandle(other);
    DisposeHandle(locked);
}

using Seen = std::array<unsigned char, 1024>;

// What stands at an address of this process, also one that is no longer anybody's. Allocates
// nothing, as that might take the very place.
Seen Peek(uintptr_t address)
{
    Seen bytes{};
    int ends[2];
    EXPECT_EQ(0, pipe(ends));
    // Called like this, nobody but the system looks at the address.
    const long count = syscall(SYS_write, ends[1], address, bytes.size());
    EXPECT_EQ(static_cast<ssize_t>(bytes.size()), count);
    EXPECT_EQ(count, read(ends[0], bytes.data(), bytes.size()));
    close(ends[0]);
    close(ends[1]);
    return bytes;
}

TEST_F(ScrambledMemory, WhatAStalePointerSeesIsOverwritten)
{
    const Handle moving = HandleWith(std::string(4096, 'x'));
    const auto stale = reinterpret_cast<uintptr_t>(*moving);
    const Handle other = NewHandle(1);
    // The allocator writes notes of its own at the start of a free block.
    const Seen seen = Peek(stale + 64);
    EXPECT_EQ(1024, std::count(seen.begin(), seen.end(), 0xDB));
    DisposeHandle(other);
    DisposeHandle(moving);
}

} // namespace

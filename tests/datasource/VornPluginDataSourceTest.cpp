// SPDX-License-Identifier: MIT
#include "src/datasource/VornPluginDataSource.h"

#include "tests/support/ErrorOf.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"
#include "tests/support/ToolboxProbe.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <string>

using test::Arrival;
using test::ErrorOf;
using test::ScriptedHost;
using test::ToolboxProbe;

namespace
{

OSErr gMemErrorNow = noErr;

} // namespace

// Comes before the library's, which never tells of an error when there is a block.
OSErr MemError(void)
{
    return gMemErrorNow;
}

namespace
{

// `size` bytes without a short period, so that a byte from a wrong place shows.
std::string Document(std::size_t size)
{
    std::mt19937 random(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

class StreamDataSource : public testing::Test
{
protected:
    // A host for `bytes` that arrive by `plan`.
    void Serve(std::string bytes, std::vector<Arrival> plan = {})
    {
        document = std::move(bytes);
        host.emplace(document, std::move(plan));
        host->Install();
    }
    // Reads through GetBytes; `counted` is the count afterwards.
    OSErr Get(SInt32 offset, SInt32 count)
    {
        counted = count;
        return source.GetBytes(buffer.data(), offset, &counted);
    }
    std::string Got() const { return buffer.substr(0, static_cast<std::size_t>(counted)); }
    std::string Part(std::size_t offset, std::size_t count) const
    {
        return document.substr(offset, count);
    }
    std::size_t Requests() const { return host->dataRequests.size(); }

    test::TestBundle bundle;
    test::TestPlugin plugin{bundle.Get()};
    VornPluginDataSource source{plugin};
    std::optional<ScriptedHost> host;
    std::string document;
    std::string buffer = std::string(20000, '#');
    SInt32 counted = 0;
};

} // namespace

TEST_F(StreamDataSource, HasNoCacheAtFirst)
{
    EXPECT_EQ(&source.plugin, &plugin);
    EXPECT_EQ(source.cacheHandle, nullptr);
    EXPECT_EQ(source.cacheStart, 0);
    EXPECT_EQ(source.cacheCapacity, 0);
    EXPECT_EQ(source.cacheLength, 0);
}

TEST_F(StreamDataSource, KeepsItsFieldsInTheirOrder)
{
    const auto place = [](const auto& field) { return reinterpret_cast<std::uintptr_t>(&field); };
    // A reference has no place of its own: that it lies before the block shows in the distance.
    const std::vector<std::uintptr_t> places = {
        place(source.dataComplete) + sizeof(void*), place(source.cacheHandle),
        place(source.cacheStart), place(source.cacheCapacity), place(source.cacheLength)};
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

TEST_F(StreamDataSource, PreparingFillsACacheOf4096BytesFromTheStart)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    EXPECT_EQ(source.cacheCapacity, 4096);
    EXPECT_EQ(GetHandleSize(source.cacheHandle), 4096);
    EXPECT_EQ(source.cacheStart, 0);
    EXPECT_EQ(source.cacheLength, 4096);
    EXPECT_EQ(std::string(*source.cacheHandle, 4096), Part(0, 4096));
    EXPECT_EQ(host->objects, std::vector<VornPlugin*>{&plugin});
}

TEST_F(StreamDataSource, PreparingBeforeAnythingHasArrivedSucceeds)
{
    Serve(Document(100), {{0, false}});
    source.PrepareDataSource();
    EXPECT_EQ(source.cacheCapacity, 4096);
    EXPECT_EQ(source.cacheLength, 0);
    EXPECT_EQ(source.CreateDataCache(0, 4096), noErr);
}

TEST_F(StreamDataSource, PreparingThrowsAnotherErrorOfTheHost)
{
    Serve(Document(100), {{100, true, ioErr}});
    EXPECT_EQ(ErrorOf([&] { source.PrepareDataSource(); }), ioErr);
}

TEST_F(StreamDataSource, PreparingTwiceLeaksNoBlock)
{
    Serve(Document(100));
    const SInt32 before = CountLiveObjects(kLiveHandles);
    source.PrepareDataSource();
    source.PrepareDataSource();
    EXPECT_EQ(CountLiveObjects(kLiveHandles), before + 1);
}

TEST_F(StreamDataSource, TerminatingGivesTheCacheUp)
{
    Serve(Document(10000));
    const SInt32 before = CountLiveObjects(kLiveHandles);
    source.PrepareDataSource();
    source.TerminateDataSource();
    EXPECT_EQ(CountLiveObjects(kLiveHandles), before);
    EXPECT_EQ(source.cacheHandle, nullptr);
    EXPECT_EQ(source.cacheCapacity, 0);
    EXPECT_EQ(source.cacheLength, 0);
    EXPECT_EQ(source.cacheStart, 0);
    source.TerminateDataSource();
}

TEST_F(StreamDataSource, DestructionGivesTheCacheUp)
{
    Serve(Document(10000));
    const SInt32 before = CountLiveObjects(kLiveHandles);
    {
        VornPluginDataSource other(plugin);
        other.PrepareDataSource();
    }
    EXPECT_EQ(CountLiveObjects(kLiveHandles), before);
}

TEST_F(StreamDataSource, TheHostWritesLengthAndCompleteness)
{
    Serve(Document(10000), {{5000, false}, {10000, true}});
    source.PrepareDataSource();
    EXPECT_EQ(source.dataSize, 5000);
    EXPECT_FALSE(source.dataComplete);
    Get(5000, 4);
    EXPECT_EQ(source.dataSize, 10000);
    EXPECT_TRUE(source.dataComplete);
}

TEST_F(StreamDataSource, AMissRefillsTheCacheFromWhereTheReadStarts)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    EXPECT_EQ(Get(5000, 4), noErr);
    EXPECT_EQ(Got(), Part(5000, 4));
    EXPECT_EQ(source.cacheStart, 5000);
    EXPECT_EQ(source.cacheLength, 4096);
}

TEST_F(StreamDataSource, AHitDoesNotCallTheHost)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    Get(5000, 4);
    const std::size_t before = Requests();
    EXPECT_EQ(Get(5004, 4), noErr);
    EXPECT_EQ(Got(), Part(5004, 4));
    EXPECT_EQ(Get(9092, 4), noErr);
    EXPECT_EQ(Requests(), before);
    EXPECT_EQ(Get(9093, 4), noErr);
    EXPECT_EQ(Requests(), before + 1);
}

TEST_F(StreamDataSource, AReadBeforeTheCacheRefillsItFromThere)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    Get(5000, 4);
    EXPECT_EQ(Get(10, 4), noErr);
    EXPECT_EQ(Got(), Part(10, 4));
    EXPECT_EQ(source.cacheStart, 10);
}

TEST_F(StreamDataSource, AReadAcrossTheStartOfTheCacheRefillsItToo)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    Get(5000, 4);
    EXPECT_EQ(Get(4998, 4), noErr);
    EXPECT_EQ(Got(), Part(4998, 4));
    EXPECT_EQ(source.cacheStart, 4998);
}

TEST_F(StreamDataSource, AnAddressBeforeTheCacheRefillsItFromThere)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    Get(5000, 4);
    const UInt8* bytes = source.GetBytesDataPtr(10, 4);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes), 4), Part(10, 4));
    EXPECT_EQ(source.cacheStart, 10);
    EXPECT_EQ(source.cacheLength, 4096);
}

TEST_F(StreamDataSource, AReadOfNothingWithinTheCacheIsAHit)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    EXPECT_EQ(Get(0, 0), noErr);
    EXPECT_EQ(Requests(), 1U);
}

TEST_F(StreamDataSource, ALargeReadGoesStraightToTheHostAndLeavesTheCache)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    EXPECT_EQ(Get(500, 8192), noErr);
    EXPECT_EQ(Got(), Part(500, 8192));
    EXPECT_EQ(source.cacheStart, 0);
    EXPECT_EQ(source.cacheLength, 4096);
    EXPECT_EQ(host->dataRequests.back().count, 8192);
}

TEST_F(StreamDataSource, AReadOfTheCachesSizeGoesThroughIt)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    EXPECT_EQ(Get(1, 4096), noErr);
    EXPECT_EQ(Got(), Part(1, 4096));
    EXPECT_EQ(source.cacheStart, 1);
}

TEST_F(StreamDataSource, AtTheEndOfCompleteDataAReadIsCut)
{
    Serve(Document(100));
    source.PrepareDataSource();
    EXPECT_EQ(Get(95, 10), noErr);
    EXPECT_EQ(counted, 5);
    EXPECT_EQ(Got(), Part(95, 5));
}

TEST_F(StreamDataSource, AtTheEndOfWhatHasArrivedAReadIsNotCut)
{
    Serve(Document(100), {{100, false, kDataNotAvailableErr}});
    source.PrepareDataSource();
    EXPECT_EQ(Get(95, 10), kDataNotAvailableErr);
    EXPECT_EQ(counted, 10);
}

TEST_F(StreamDataSource, PastTheEndThereIsNothing)
{
    Serve(Document(100));
    source.PrepareDataSource();
    EXPECT_EQ(Get(100, 10), kDataNotAvailableErr);
    EXPECT_EQ(counted, 0);
}

TEST_F(StreamDataSource, ReadsWhatHadNotArrivedBefore)
{
    Serve(Document(100), {{0, false}, {0, false}, {100, true}});
    source.PrepareDataSource();
    EXPECT_EQ(Get(0, 10), kDataNotAvailableErr);
    EXPECT_EQ(Get(0, 10), noErr);
    EXPECT_EQ(Got(), Part(0, 10));
}

TEST_F(StreamDataSource, AFetchReturnsWhatIsMissingOrThrowsIt)
{
    Serve(Document(100), {{0, false}});
    counted = 10;
    EXPECT_EQ(source.FetchDataFromSource(buffer.data(), 0, &counted, false), kDataNotAvailableErr);
    counted = 10;
    EXPECT_EQ(ErrorOf([&] { source.FetchDataFromSource(buffer.data(), 0, &counted, true); }),
              kDataNotAvailableErr);
}

TEST_F(StreamDataSource, AFetchThrowsAnyOtherErrorAtOnce)
{
    Serve(Document(100), {{100, true, dskFulErr}});
    for (const bool mustHaveAll : {false, true}) {
        counted = 10;
        EXPECT_EQ(
            ErrorOf([&] { source.FetchDataFromSource(buffer.data(), 0, &counted, mustHaveAll); }),
            dskFulErr);
    }
    EXPECT_EQ(ErrorOf([&] { Get(0, 10); }), dskFulErr);
}

TEST_F(StreamDataSource, SkippingFromTheEndAsksTheHostForTheLength)
{
    Serve(Document(100), {{40, false}, {100, true}});
    source.PrepareDataSource();
    source.SkipToOffsetFromBufferEnd(4);
    EXPECT_EQ(source.readOffset, 96);
    EXPECT_TRUE(host->dataRequests.back().nullBuffer);
    EXPECT_EQ(host->dataRequests.back().count, 0);
}

TEST_F(StreamDataSource, SkippingFromTheEndThrowsIfTheHostHasNothingYet)
{
    Serve(Document(100), {{0, false, kDataNotAvailableErr}});
    EXPECT_EQ(ErrorOf([&] { source.SkipToOffsetFromBufferEnd(4); }), kDataNotAvailableErr);
}

TEST_F(StreamDataSource, WithoutMemoryItWorksWithoutACache)
{
    Serve(Document(100));
    {
        ToolboxProbe probe;
        probe.Fail("NewHandle", memFullErr);
        EXPECT_EQ(source.CreateDataCache(0, 4096), memFullErr);
        probe.Fail("NewHandle", memFullErr);
        source.PrepareDataSource();
    }
    EXPECT_EQ(source.cacheHandle, nullptr);
    EXPECT_EQ(source.cacheCapacity, 0);
    EXPECT_EQ(Requests(), 0U);
    EXPECT_EQ(Get(7, 1), noErr);
    EXPECT_EQ(Got(), Part(7, 1));
    EXPECT_EQ(source.GetBytesDataPtr(0, 1), nullptr);
    EXPECT_EQ(source.lastError, noErr);
}

TEST_F(StreamDataSource, TakesNoBlockThatTheMemoryManagerCallsAFailure)
{
    Serve(Document(10000));
    const SInt32 before = CountLiveObjects(kLiveHandles);
    gMemErrorNow = nilHandleErr;
    EXPECT_EQ(source.CreateDataCache(0, 4096), memFullErr);
    gMemErrorNow = noErr;
    EXPECT_EQ(source.cacheHandle, nullptr);
    EXPECT_EQ(source.cacheCapacity, 0);
    EXPECT_EQ(CountLiveObjects(kLiveHandles), before);
    EXPECT_EQ(Requests(), 0U);
}

TEST_F(StreamDataSource, WithoutACacheAReadOfNothingOnlyAsksForTheLength)
{
    Serve(Document(100));
    EXPECT_EQ(Get(7, 0), noErr);
    EXPECT_TRUE(host->dataRequests.back().nullBuffer);
    EXPECT_EQ(source.dataSize, 100);
}

TEST_F(StreamDataSource, WithoutACacheThereIsNothingToFill)
{
    Serve(Document(100), {{100, false, kDataNotAvailableErr}});
    SInt32 count = 10;
    EXPECT_EQ(source.FillDataCache(7, &count), kDataNotAvailableErr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(host->dataRequests.back().count, 0);
}

TEST_F(StreamDataSource, ACacheThatCouldNotBeFilledIsThereAndEmpty)
{
    Serve(Document(10000), {{10000, true}, {10000, true, ioErr}});
    source.PrepareDataSource();
    ASSERT_EQ(source.cacheLength, 4096);
    EXPECT_EQ(ErrorOf([&] { source.CreateDataCache(500, 100); }), ioErr);
    EXPECT_EQ(source.cacheStart, 500);
    EXPECT_EQ(source.cacheCapacity, 100);
    EXPECT_EQ(source.cacheLength, 0);
}

TEST_F(StreamDataSource, ACacheThatCannotBeReplacedIsKept)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    ToolboxProbe probe;
    probe.Fail("NewHandle", memFullErr);
    EXPECT_EQ(source.CreateDataCache(500, 100), memFullErr);
    EXPECT_EQ(source.cacheStart, 0);
    EXPECT_EQ(source.cacheCapacity, 4096);
    EXPECT_EQ(source.cacheLength, 4096);
}

namespace
{

// While getData runs: the block of this source, and the state it was seen in.
const VornPluginDataSource* gWatched = nullptr;
SInt8 gStateSeen = 0;

} // namespace

TEST_F(StreamDataSource, TheBlockIsLockedWhileTheHostFillsIt)
{
    Serve(Document(10000));
    VornPluginHostCalls calls = ScriptedHost::Calls();
    calls.getData = [](VornPlugin* object, void* dest, SInt32 offset, SInt32* count,
                       SInt32* dataSize, unsigned char* dataComplete) {
        gStateSeen = HGetState(gWatched->cacheHandle);
        return ScriptedHost::Calls().getData(object, dest, offset, count, dataSize, dataComplete);
    };
    SetupPluginHostCalls(&calls);
    gWatched = &source;
    source.PrepareDataSource();
    EXPECT_NE(gStateSeen, 0);
    EXPECT_EQ(HGetState(source.cacheHandle), 0);
}

TEST_F(StreamDataSource, FillingNeedsTheBlockInNoParticularPlace)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    const ToolboxProbe probe;
    Get(5000, 4);
    EXPECT_EQ(probe.Calls({"HGetState", "HLock", "HLockHi", "HSetState"}),
              (std::vector<std::string>{"HGetState", "HLock", "HSetState"}));
}

TEST_F(StreamDataSource, FillingPutsBackTheStateThatTheBlockHad)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    HLock(source.cacheHandle);
    Get(5000, 4);
    EXPECT_NE(HGetState(source.cacheHandle), 0);
}

TEST_F(StreamDataSource, FillingUnlocksTheBlockIfTheHostFails)
{
    Serve(Document(10000), {{10000, true}, {10000, true, ioErr}});
    source.PrepareDataSource();
    EXPECT_EQ(ErrorOf([&] { Get(5000, 4); }), ioErr);
    EXPECT_EQ(HGetState(source.cacheHandle), 0);
}

TEST_F(StreamDataSource, GivesAddressesIntoTheUnlockedBlock)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    const UInt8* bytes = source.GetBytesDataPtr(10, 4);
    EXPECT_EQ(bytes, reinterpret_cast<UInt8*>(*source.cacheHandle) + 10);
    EXPECT_EQ(HGetState(source.cacheHandle), 0);
    const UInt8* elsewhere = source.GetBytesDataPtr(5000, 4);
    EXPECT_EQ(elsewhere, reinterpret_cast<UInt8*>(*source.cacheHandle));
    EXPECT_EQ(*elsewhere, static_cast<UInt8>(document[5000]));
    EXPECT_EQ(source.cacheStart, 5000);
    EXPECT_EQ(source.cacheLength, 4096);
}

TEST_F(StreamDataSource, ServesNumbersFromTheCacheThoughItsBlockMoves)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    SetHandleScramble(true);
    UInt8 first = 0;
    UInt8 second = 0;
    source.ReadUChar(&first, true);
    DisposeHandle(NewHandle(10));
    source.ReadUChar(&second, true);
    SetHandleScramble(false);
    EXPECT_EQ(first, static_cast<UInt8>(document[0]));
    EXPECT_EQ(second, static_cast<UInt8>(document[1]));
    EXPECT_EQ(Requests(), 1U);
}

TEST_F(StreamDataSource, GivesNoAddressForMoreThanTheCacheHolds)
{
    Serve(Document(10000));
    source.PrepareDataSource();
    EXPECT_EQ(source.GetBytesDataPtr(0, 4097), nullptr);
    EXPECT_EQ(source.lastError, noErr);
    EXPECT_NE(source.GetBytesDataPtr(0, 4096), nullptr);
}

TEST_F(StreamDataSource, AnAddressAcrossTheEndIsRefused)
{
    Serve(Document(100));
    source.PrepareDataSource();
    EXPECT_NE(source.GetBytesDataPtr(96, 4), nullptr);
    EXPECT_EQ(ErrorOf([&] { source.GetBytesDataPtr(97, 4); }), kDataOutOfRangeErr);
    EXPECT_EQ(source.lastError, kDataOutOfRangeErr);
}

TEST_F(StreamDataSource, AnOffsetNearTheEndOfTheNumbersIsRefused)
{
    Serve(Document(100));
    source.PrepareDataSource();
    EXPECT_EQ(ErrorOf([&] { source.GetBytesDataPtr(INT32_MAX, 4); }), kDataOutOfRangeErr);
    EXPECT_EQ(Get(INT32_MAX, 10), kDataNotAvailableErr);
}

TEST_F(StreamDataSource, ReadsAreTheSameForAnyArrival)
{
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto size = static_cast<SInt32>(1 + random() % 20000);
        std::vector<Arrival> plan;
        for (SInt32 upTo = 0; upTo < size; upTo += static_cast<SInt32>(1 + random() % 6000))
            plan.push_back({upTo, false, kDataNotAvailableErr});
        plan.push_back({size, true});
        Serve(Document(static_cast<std::size_t>(size)), plan);
        VornPluginDataSource reader(plugin);
        reader.PrepareDataSource();

        // A reader that takes what there is and comes back for the rest gets every byte once.
        std::string read;
        while (static_cast<SInt32>(read.size()) < size) {
            SInt32 count = static_cast<SInt32>(1 + random() % 9000);
            const OSErr err = reader.ReadAvailableBytes(&count, buffer.data(), false);
            if (err == noErr) {
                read.append(buffer, 0, static_cast<std::size_t>(count));
                reader.SkipBytes(count);
            }
        }
        ASSERT_EQ(read, document);
    }
}

// SPDX-License-Identifier: MIT
#include "src/datasource/VornDataSource.h"
#include "tests/support/CooperativeThread.h"
#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <random>

namespace test
{
namespace
{

constexpr SInt32 kChunk = 16384;

class MovieSpooling : public MovieTest
{
protected:
    // Runs what is left of the tasking thread after a whole rendering.
    static void EndTasking(const VornMoviePlugin& plugin)
    {
        while (plugin.taskingThread != kNoThreadID) {
            YieldToAnyThread();
        }
    }
};

// Keeps what it is told, in words. Must outlive the plug-in, which tells it of its end.
class KeptProgress : public VornMovieLoadListener
{
public:
    void LoadComplete(SInt32 bytes) override
    {
        told.push_back("complete " + std::to_string(bytes));
    }
    void LoadProgress(SInt32 bytes) override
    {
        told.push_back("progress " + std::to_string(bytes));
    }
    void NotifyListenerOfPluginDeath() override { told.push_back("death"); }

    Calls told;
};

// The spool file ------------------------------------------------------------------------------

TEST_F(MovieSpooling, MakesTheFileFromTheObjectsNameTypeAndCreator)
{
    auto plugin = MakePlugin("video/mpeg", "clip.mpg", FOUR_CHARS('M', 'P', 'G', '3'));
    plugin->CreateMovieFile();
    EXPECT_TRUE(plugin->spoolFileCreated);
    CInfoPBRec info{};
    info.ioNamePtr = plugin->spoolFileSpec.name;
    info.ioVRefNum = plugin->spoolFileSpec.vRefNum;
    info.ioDirID = plugin->spoolFileSpec.parID;
    ASSERT_EQ(PBGetCatInfoSync(&info), noErr);
    EXPECT_EQ(info.ioFlFndrType, FOUR_CHARS('M', 'P', 'G', '3'));
    EXPECT_EQ(info.ioFlFndrCreator, FOUR_CHARS('h', 'o', 's', 't'));
    EXPECT_EQ(info.ioFlLgLen, 0);
    const auto* const name = reinterpret_cast<const char*>(plugin->spoolFileSpec.name);
    EXPECT_EQ(std::string(name + 1, static_cast<size_t>(name[0])), "clip.mpg");
}

TEST_F(MovieSpooling, CutsALongNameTo31CharactersBeforeAnythingElse)
{
    auto plugin = MakePlugin("video/mpeg", "abcdefghijklmnopqrstuvwxyz0123456789.mpg");
    plugin->CreateMovieFile();
    const auto* const name = reinterpret_cast<const char*>(plugin->spoolFileSpec.name);
    EXPECT_EQ(std::string(name + 1, static_cast<size_t>(name[0])),
              "abcdefghijklmnopqrstuvwxyz01234");
}

TEST_F(MovieSpooling, GivesTwoObjectsOfOneNameTwoFiles)
{
    auto first = MakePlugin();
    auto second = MakePlugin();
    first->CreateMovieFile();
    second->CreateMovieFile();
    Spool(*first, 10);
    first->CloseMovieFile();
    EXPECT_EQ(FileBytes(first->spoolFileSpec).size(), 10u);
    EXPECT_EQ(FileBytes(second->spoolFileSpec).size(), 0u);
}

TEST_F(MovieSpooling, DoesNotMarkAFileCreatedThatCouldNotBe)
{
    auto plugin = MakePlugin();
    probe.Fail("FSpCreate", dskFulErr);
    EXPECT_EQ(ThrownBy([&] { plugin->CreateMovieFile(); }), dskFulErr);
    EXPECT_FALSE(plugin->spoolFileCreated);
}

TEST_F(MovieSpooling, ThrowsWhatTheTemporaryFolderFailsWith)
{
    auto plugin = MakePlugin();
    probe.Fail("FindFolder", fnfErr);
    EXPECT_EQ(ThrownBy([&] { plugin->CreateMovieFile(); }), fnfErr);
    EXPECT_EQ(probe.Count("FSpCreate"), 0);
}

// One chunk -----------------------------------------------------------------------------------

TEST_F(MovieSpooling, RefusesAChunkBeforeTheFileExists)
{
    auto plugin = MakePlugin();
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), paramErr);
    EXPECT_EQ(probe.Count("FSpOpenDF"), 0);
}

TEST_F(MovieSpooling, OpensPathAndBufferOnceForAllChunks)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Forget();
    Spool(*plugin, 3 * kChunk);
    EXPECT_EQ(probe.Count("FSpOpenDF"), 1);
    EXPECT_EQ(probe.Count("NewHandle"), 1);
    EXPECT_EQ(GetHandleSize(plugin->spoolBuffer), kChunk);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, ReadsStraightIntoTheLockedBlockAndWritesOnce)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Forget();
    SInt8 stateInside = 0;
    host.onGetData = [&] { stateInside = HGetState(plugin->spoolBuffer); };
    Spool(*plugin, 100);
    EXPECT_EQ(stateInside & 0x80, 0x80);
    EXPECT_EQ(HGetState(plugin->spoolBuffer) & 0x80, 0);
    EXPECT_EQ(probe.Calls({"HLockHi", "HSetState", "FSWrite"}),
              (Calls{"HLockHi", "HSetState", "FSWrite"}));
    ASSERT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.requests[0].offset, 0);
    EXPECT_EQ(host.requests[0].count, kChunk);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, UnlocksTheBlockWhenTheReadThrows)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    host.failure = ioErr;
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), ioErr);
    EXPECT_EQ(HGetState(plugin->spoolBuffer) & 0x80, 0);
    EXPECT_EQ(plugin->bytesSpooled, 100);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, ThrowsMemFullWithoutAChunkBuffer)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Fail("NewHandle", -1);
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), memFullErr);
    EXPECT_EQ(plugin->spoolBuffer, nullptr);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, ThrowsWhatOpeningForWritingFailsWith)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Fail("FSpOpenDF", tmfoErr);
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), tmfoErr);
    EXPECT_EQ(plugin->spoolWriteRefNum, -1);
}

TEST_F(MovieSpooling, ThrowsWhatWritingFailsWith)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    host.arrivals = {100};
    probe.Fail("FSWrite", dskFulErr);
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), dskFulErr);
    EXPECT_EQ(plugin->bytesSpooled, 0);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, WritesTheBytesOfTheReadThatReportsTheEnd)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    host.arrivals = {70};
    host.reportsEndWithLastBytes = true;
    plugin->SpoolMovieToFile();
    EXPECT_TRUE(plugin->allDataSpooled);
    EXPECT_EQ(plugin->bytesSpooled, 70);
    plugin->CloseMovieFile();
    EXPECT_EQ(FileBytes(plugin->spoolFileSpec).size(), 70u);
}

TEST_F(MovieSpooling, TakesAnyErrorOfABlockReadForTheEnd)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    struct FailingSource : VornDataSource {
        OSErr GetBytes(void*, SInt32, SInt32* count) override
        {
            *count = 5;
            return -1234;
        }
        UInt8* GetBytesDataPtr(SInt32, SInt32) override { return nullptr; }
        OSErr FetchDataFromSource(void*, SInt32, SInt32*, unsigned char) override { return 0; }
    };
    delete plugin->dataSource;
    plugin->dataSource = new FailingSource;
    plugin->SpoolMovieToFile();
    EXPECT_TRUE(plugin->allDataSpooled);
    EXPECT_EQ(plugin->bytesSpooled, 105);
    plugin->CloseMovieFile();
}

// Closing -------------------------------------------------------------------------------------

TEST_F(MovieSpooling, ClosesTheWritePathOnce)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    probe.Forget();
    plugin->CloseMovieFile();
    EXPECT_EQ(plugin->spoolWriteRefNum, -1);
    plugin->CloseMovieFile();
    EXPECT_EQ(probe.Count("FSClose"), 1);
}

TEST_F(MovieSpooling, ForgetsTheWritePathEvenWhenClosingFails)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    const SInt16 path = plugin->spoolWriteRefNum;
    probe.Fail("FSClose", ioErr);
    EXPECT_EQ(ThrownBy([&] { plugin->CloseMovieFile(); }), ioErr);
    EXPECT_EQ(plugin->spoolWriteRefNum, -1);
    EXPECT_NO_THROW(plugin->CloseMovieFile());
    FSClose(path);
}

// Rendering -----------------------------------------------------------------------------------

TEST_F(MovieSpooling, RendersInItsOrder)
{
    KeptProgress listener;
    auto plugin = MakePlayingPlugin();
    plugin->AddLoadListener(&listener);
    host.arrivals = {100};
    host.object.resize(100);
    plugin->Render();
    EXPECT_EQ(probe.Calls({"NewThreadEntryUPP", "GetPort", "FindFolder", "FSpCreate", "NewThread",
                           "FSClose", "GetMovieDuration", "GetMaxLoadedTimeInMovie",
                           "DeleteMovieSegment", "MCMovieChanged"}),
              (Calls{"NewThreadEntryUPP", "GetPort", "FindFolder", "FSpCreate", "NewThread",
                     "FSClose", "GetMovieDuration", "GetMaxLoadedTimeInMovie",
                     "DeleteMovieSegment 0 0", "MCMovieChanged", "MCMovieChanged"}));
    EXPECT_EQ(listener.told, (Calls{"progress 100", "complete 100"}));
    EXPECT_EQ(plugin->moviePort, port);
    EndTasking(*plugin);
}

TEST_F(MovieSpooling, ListenersHearEveryChunkThatBroughtBytes)
{
    KeptProgress listener;
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&listener);
    host.object.resize(50000);
    host.arrivals = {100, 0, 0, 20000, 0, 29900};
    plugin->Render();
    EXPECT_EQ(listener.told, (Calls{"progress 100", "progress 16484", "progress 20100",
                                    "progress 36484", "progress 50000", "complete 50000"}));
    EndTasking(*plugin);
}

TEST_F(MovieSpooling, AnEmptyObjectEndsAtOnceWithoutProgress)
{
    KeptProgress listener;
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&listener);
    host.object.clear();
    plugin->Render();
    EXPECT_EQ(listener.told, Calls{"complete 0"});
    EXPECT_EQ(host.requests.size(), 1u);
    EXPECT_TRUE(plugin->allDataSpooled);
    EXPECT_TRUE(FileBytes(plugin->spoolFileSpec).empty());
    EndTasking(*plugin);
}

TEST_F(MovieSpooling, TheFileIsClosedForWritingBeforeListenersHearOfCompletion)
{
    struct : KeptProgress {
        void LoadComplete(SInt32) override { pathAtCompletion = plugin->spoolWriteRefNum; }
        VornMoviePlugin* plugin = nullptr;
        SInt16 pathAtCompletion = 0;
    } listener;
    auto plugin = MakePlugin();
    listener.plugin = plugin.get();
    plugin->AddLoadListener(&listener);
    host.arrivals = {1000};
    plugin->Render();
    EXPECT_EQ(listener.pathAtCompletion, -1);
    EndTasking(*plugin);
}

TEST_F(MovieSpooling, StartsNoThreadWithoutAFileSpecification)
{
    auto plugin = MakePlugin();
    probe.Fail("FindFolder", fnfErr);
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), fnfErr);
    EXPECT_EQ(probe.Count("NewThread"), 0);
    EXPECT_TRUE(host.requests.empty());
}

TEST_F(MovieSpooling, StartsNoThreadWithoutAFile)
{
    auto plugin = MakePlugin();
    probe.Fail("FSpCreate", dskFulErr);
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), dskFulErr);
    EXPECT_EQ(probe.Count("NewThread"), 0);
}

TEST_F(MovieSpooling, SpoolsNothingWithoutATaskingThread)
{
    auto plugin = MakePlugin();
    probe.Fail("NewThread", memFullErr);
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), memFullErr);
    EXPECT_TRUE(plugin->spoolFileCreated);
    EXPECT_TRUE(FileExists(plugin->spoolFileSpec));
    EXPECT_TRUE(host.requests.empty());
}

TEST_F(MovieSpooling, DoesNotCompleteWhenClosingFails)
{
    KeptProgress listener;
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&listener);
    host.arrivals = {100};
    SInt16 path = -1;
    host.onGetData = [&] { path = plugin->spoolWriteRefNum; };
    probe.Fail("FSClose", ioErr);
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), ioErr);
    EXPECT_EQ(listener.told, Calls{"progress 100"});
    FSClose(path);
    EndTasking(*plugin);
}

TEST_F(MovieSpooling, AReadThatFailsEndsSpoolingAndTrimsTheMovie)
{
    KeptProgress listener;
    auto plugin = MakePlayingPlugin();
    plugin->AddLoadListener(&listener);
    Movies().duration = 900;
    Movies().maxLoadedTime = 300;
    host.arrivals = {40000};
    host.object.resize(40000);
    host.onGetData = [&] {
        if (host.requests.size() == 2) {
            host.object.resize(16384 + 7); // the source broke off here
            host.reportsEndWithLastBytes = true;
        }
    };
    plugin->Render();
    EXPECT_EQ(listener.told, (Calls{"progress 16384", "progress 16391", "complete 16391"}));
    EXPECT_EQ(probe.Calls({"DeleteMovieSegment"}), Calls{"DeleteMovieSegment 300 900"});
    EndTasking(*plugin);
}

TEST_F(MovieSpooling, AHostsOwnErrorEndsRenderingWithoutCompletion)
{
    KeptProgress listener;
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&listener);
    host.failure = ioErr;
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), ioErr);
    EXPECT_FALSE(plugin->allDataSpooled);
    EXPECT_TRUE(listener.told.empty());
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, DecodingFreesTheChunkBuffer)
{
    auto plugin = MakePlugin();
    host.object.resize(30000);
    host.arrivals = {30000};
    plugin->Decode();
    EXPECT_EQ(plugin->spoolBuffer, nullptr);
    EXPECT_EQ(host.told, Calls{"renderingDone 0"});
    EXPECT_EQ(FileBytes(plugin->spoolFileSpec), host.object);
    EndTasking(*plugin);
}

TEST_F(MovieSpooling, DisposingOfDecodingDataTwiceIsHarmless)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 10);
    plugin->DisposeDecodingData();
    EXPECT_EQ(plugin->spoolBuffer, nullptr);
    EXPECT_NO_THROW(plugin->DisposeDecodingData());
    plugin->CloseMovieFile();
}

// Any chunking gives the same file --------------------------------------------------------------

class Chunking : public MovieSpooling, public testing::WithParamInterface<UInt32>
{
};

TEST_P(Chunking, LeavesTheObjectInTheFileByteByByte)
{
    std::mt19937 random(GetParam());
    const auto upTo = [&](UInt32 most) { return static_cast<SInt32>(random() % (most + 1)); };
    host.FillObject(upTo(200000));
    host.yields = upTo(1) != 0;
    host.reportsEndWithLastBytes = upTo(1) != 0;
    const auto size = static_cast<SInt32>(host.object.size());
    for (SInt32 planned = 0; planned < size;) {
        host.arrivals.push_back(upTo(upTo(3) == 0 ? 60000u : 2000u));
        planned += host.arrivals.back();
    }
    KeptProgress listener;
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&listener);
    SInt32 before = 0;
    host.onGetData = [&] {
        // Requests follow one another without gap or overlap, whole chunks each.
        EXPECT_EQ(host.requests.back().offset, plugin->bytesSpooled);
        EXPECT_EQ(host.requests.back().count, kChunk);
        EXPECT_GE(plugin->bytesSpooled, before);
        before = plugin->bytesSpooled;
        if (plugin->spoolReadRefNum == -1 && plugin->bytesSpooled > 0) {
            SInt32 none = 0;
            plugin->GetMovieData(nullptr, 0, &none, false); // opens the read path
        }
        SInt32 end = 0;
        if (plugin->spoolReadRefNum != -1) {
            GetEOF(plugin->spoolReadRefNum, &end);
            EXPECT_EQ(end, plugin->bytesSpooled);
        }
    };
    plugin->Render();
    EXPECT_EQ(FileBytes(plugin->spoolFileSpec), host.object);
    EXPECT_EQ(plugin->bytesSpooled, size);
    ASSERT_FALSE(listener.told.empty());
    EXPECT_EQ(listener.told.back(), "complete " + std::to_string(size));
    EXPECT_EQ(std::adjacent_find(listener.told.begin(), listener.told.end()), listener.told.end());
    EndTasking(*plugin);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Chunking, testing::Range(1u, 41u));

// Reading what is spooled -----------------------------------------------------------------------

class SpooledData : public MovieSpooling
{
protected:
    SpooledData() : plugin(MakePlugin()) {}
    ~SpooledData() override = default;

    void SetUp() override
    {
        MovieTest::SetUp();
        Spool(*plugin, 1000);
    }
    void TearDown() override
    {
        if (plugin->spoolWriteRefNum != -1) {
            plugin->CloseMovieFile();
        }
        plugin.reset();
        MovieTest::TearDown();
    }

    SInt32 Read(SInt32 offset, SInt32 want, unsigned char wait = false)
    {
        bytes.assign(static_cast<size_t>(std::max(want, 0)) + 1, 0);
        SInt32 count = want;
        plugin->GetMovieData(bytes.data(), offset, &count, wait);
        return count;
    }

    std::unique_ptr<VornMoviePlugin> plugin;
    std::vector<UInt8> bytes;
};

TEST_F(SpooledData, IsReadUpToItsVeryEndWithoutWaiting)
{
    EXPECT_EQ(Read(900, 100), 100);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end() - 1, host.object.begin() + 900));
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 0);
}

TEST_F(SpooledData, IsReadThroughOnePathThatStaysOpen)
{
    probe.Forget();
    Read(0, 10);
    Read(500, 10);
    EXPECT_EQ(probe.Count("FSpOpenDF"), 1);
    EXPECT_EQ(probe.Count("FSClose"), 0);
    EXPECT_NE(plugin->spoolReadRefNum, plugin->spoolWriteRefNum);
}

TEST_F(SpooledData, OneByteTooManyIsNotThereYet)
{
    EXPECT_EQ(IntThrownBy([&] { Read(900, 101); }), notEnoughDataErr);
}

TEST_F(SpooledData, OneByteTooManyIsPastTheEndOnceAllIsIn)
{
    SpoolTheEnd(*plugin);
    EXPECT_EQ(IntThrownBy([&] { Read(900, 101); }), eofErr);
}

TEST_F(SpooledData, LeavesTheCountAloneWhenItThrows)
{
    SInt32 count = 101;
    char byte = 0;
    EXPECT_EQ(IntThrownBy([&] { plugin->GetMovieData(&byte, 900, &count, false); }),
              notEnoughDataErr);
    EXPECT_EQ(count, 101);
}

TEST_F(SpooledData, ARequestNear2GiBIsNotWrapped)
{
    EXPECT_EQ(IntThrownBy([&] { Read(INT32_MAX, 16); }), notEnoughDataErr);
    EXPECT_EQ(IntThrownBy([&] {
                  SInt32 count = INT32_MAX;
                  char byte = 0;
                  plugin->GetMovieData(&byte, INT32_MAX, &count, false);
              }),
              notEnoughDataErr);
}

TEST_F(SpooledData, IsCutAtTheEndOfACompleteFileWhenWaitedFor)
{
    SpoolTheEnd(*plugin);
    EXPECT_EQ(Read(900, 5000, true), 100);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + 100, host.object.begin() + 900));
}

TEST_F(SpooledData, BeyondACompleteFileAsksForANegativeCount)
{
    SpoolTheEnd(*plugin);
    EXPECT_EQ(ThrownBy([&] { Read(1001, 10, true); }), paramErr);
    EXPECT_EQ(ThrownBy([&] { Read(INT32_MAX, 10, true); }), paramErr);
}

TEST_F(SpooledData, BeforeItsStartIsNowhere)
{
    EXPECT_EQ(ThrownBy([&] { Read(-1, 10); }), posErr);
}

TEST_F(SpooledData, IsWaitedForUntilEnoughHasCome)
{
    const CooperativeThread bringer([this] {
        for (int turn = 0; turn < 5; ++turn) {
            Spool(*plugin, 100);
            YieldToAnyThread();
        }
    });
    EXPECT_EQ(Read(1000, 250, true), 250);
    EXPECT_EQ(plugin->bytesSpooled, 1300); // no turn more than needed
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end() - 1, host.object.begin() + 1000));
}

TEST_F(SpooledData, WaitingEndsWithTheData)
{
    const CooperativeThread ender([this] {
        YieldToAnyThread();
        SpoolTheEnd(*plugin);
    });
    plugin->SpoolMovieData(1000000);
    EXPECT_TRUE(plugin->allDataSpooled);
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 3); // two waits and the ender's own
}

TEST_F(SpooledData, NothingIsWaitedForThatIsThere)
{
    plugin->SpoolMovieData(1000);
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 0);
}

struct FileFailure {
    const char* operation;
    OSErr err;
};

class FailingRead : public SpooledData, public testing::WithParamInterface<FileFailure>
{
};

TEST_P(FailingRead, IsThrownAsItIs)
{
    probe.Fail(GetParam().operation, GetParam().err);
    EXPECT_EQ(ThrownBy([&] { Read(0, 10); }), GetParam().err);
    EXPECT_EQ(Read(0, 10), 10); // and the next one works
}

INSTANTIATE_TEST_SUITE_P(Operations, FailingRead,
                         testing::Values(FileFailure{"FSpOpenDF", tmfoErr},
                                         FileFailure{"GetEOF", rfNumErr},
                                         FileFailure{"SetFPos", ioErr},
                                         FileFailure{"FSRead", eofErr}));

} // namespace
} // namespace test

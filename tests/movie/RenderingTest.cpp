// SPDX-License-Identifier: MIT
#include "tests/movie/SpoolingTest.h"
#include "toolbox/Errors.h"

#include <algorithm>
#include <random>

namespace test
{
namespace
{

class Rendering : public SpoolingTest
{
};

TEST_F(Rendering, RendersInItsOrder)
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

TEST_F(Rendering, HasFileAndThreadWhileDataArrive)
{
    auto plugin = MakePlugin();
    host.arrivals = {100};
    int asked = 0;
    host.onGetData = [&] {
        ++asked;
        EXPECT_TRUE(plugin->spoolFileCreated);
        EXPECT_TRUE(FileExists(plugin->spoolFileSpec));
        EXPECT_NE(plugin->taskingThread, kNoThreadID);
        EXPECT_FALSE(plugin->allDataSpooled);
    };
    plugin->Render();
    EXPECT_EQ(asked, 2);
    EXPECT_TRUE(plugin->allDataSpooled);
    EndTasking(*plugin);
}

TEST_F(Rendering, ListenersHearEveryChunkThatBroughtBytes)
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

TEST_F(Rendering, AnEmptyObjectEndsAtOnceWithoutProgress)
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

TEST_F(Rendering, TheFileIsClosedForWritingBeforeListenersHearOfCompletion)
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

TEST_F(Rendering, StartsNoThreadWithoutAFileSpecification)
{
    auto plugin = MakePlugin();
    probe.Fail("FindFolder", fnfErr);
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), fnfErr);
    EXPECT_EQ(probe.Count("NewThread"), 0);
    EXPECT_TRUE(host.requests.empty());
}

TEST_F(Rendering, StartsNoThreadWithoutAFile)
{
    auto plugin = MakePlugin();
    probe.Fail("FSpCreate", dskFulErr);
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), dskFulErr);
    EXPECT_EQ(probe.Count("NewThread"), 0);
}

TEST_F(Rendering, SpoolsNothingWithoutATaskingThread)
{
    auto plugin = MakePlugin();
    probe.Fail("NewThread", memFullErr);
    EXPECT_EQ(ThrownBy([&] { plugin->Render(); }), memFullErr);
    EXPECT_TRUE(plugin->spoolFileCreated);
    EXPECT_TRUE(FileExists(plugin->spoolFileSpec));
    EXPECT_TRUE(host.requests.empty());
}

TEST_F(Rendering, DoesNotCompleteWhenClosingFails)
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

TEST_F(Rendering, AReadThatFailsEndsSpoolingAndTrimsTheMovie)
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

TEST_F(Rendering, AHostsOwnErrorEndsRenderingWithoutCompletion)
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

TEST_F(Rendering, DecodingFreesTheChunkBuffer)
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

TEST_F(Rendering, DisposingOfDecodingDataTwiceIsHarmless)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 10);
    probe.Forget();
    plugin->DisposeDecodingData();
    EXPECT_EQ(plugin->spoolBuffer, nullptr);
    EXPECT_NO_THROW(plugin->DisposeDecodingData());
    EXPECT_EQ(probe.Count("DisposeHandle"), 2); // of null, too
    plugin->CloseMovieFile();
}

// Any chunking gives the same file --------------------------------------------------------------

class Chunking : public SpoolingTest, public testing::WithParamInterface<UInt32>
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

} // namespace
} // namespace test

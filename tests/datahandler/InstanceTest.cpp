// SPDX-License-Identifier: MIT
#include "src/datahandler/DataHandlerRoutines.h"
#include "tests/datahandler/DataHandlerTest.h"
#include "toolbox/gestalt/Gestalt.h"

#include <cstdint>

namespace test
{
namespace
{

class Instance : public DataHandlerTest
{
};

TEST_F(Instance, OpensTheAliasHandlerAndTargetsItAtItself)
{
    plugin = MakePlugin();
    probe.Forget();
    ASSERT_EQ(OpenAComponent(gDataHandlerComponent, &instance), noErr);
    EXPECT_EQ(probe.Calls({"OpenAComponent", "FindNextComponent", "SetComponentInstanceStorage",
                           "CallComponentTarget"}),
              (Calls{"OpenAComponent", "FindNextComponent", "OpenAComponent",
                     "SetComponentInstanceStorage", // the alias handler's own
                     "SetComponentInstanceStorage", "CallComponentTarget"}));
    handler = dynamic_cast<VornPluginDataHandlerComponent*>(plugin->loadListeners[0]);
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(handler->self, instance);
    EXPECT_NE(handler->delegate, nullptr);
    EXPECT_NE(handler->delegate, instance);
    EXPECT_EQ(handler->moviePlugin, plugin.get());
}

TEST_F(Instance, DoesNotOpenWithoutAnAliasHandler)
{
    plugin = MakePlugin();
    probe.Fail("FindNextComponent", -1);
    EXPECT_EQ(OpenAComponent(gDataHandlerComponent, &instance), paramErr);
    EXPECT_EQ(instance, nullptr);
}

TEST_F(Instance, ReturnsWhatOpeningTheAliasHandlerFailsWith)
{
    plugin = MakePlugin();
    probe.Fail("OpenAComponent", -1234, 2);
    EXPECT_EQ(OpenAComponent(gDataHandlerComponent, &instance), -1234);
    EXPECT_EQ(plugin->loadListeners.count, 0);
}

TEST_F(Instance, OpensThoughItsDelegateCannotBeTargeted)
{
    probe.Fail("CallComponentTarget", paramErr);
    Open();
    ASSERT_NE(handler, nullptr);
    EXPECT_NE(handler->delegate, nullptr);
}

TEST_F(Instance, DoesNotOpenWithoutAMoviePlugin)
{
    EXPECT_EQ(OpenAComponent(gDataHandlerComponent, &instance), memFullErr);
    EXPECT_EQ(probe.Count("CloseComponent"), 1); // the delegate
    EXPECT_EQ(CountLiveObjects(kLiveComponentInstances), 0);
}

TEST_F(Instance, CannotBeConstructedWithoutAMoviePlugin)
{
    EXPECT_EQ(ThrownBy([] { VornPluginDataHandlerComponent failing(nullptr, nullptr); }), paramErr);
}

TEST_F(Instance, BindsToTheMoviePluginConstructedLast)
{
    const auto older = MakePlugin();
    Open();
    EXPECT_EQ(older->loadListeners.count, 0);
    EXPECT_EQ(handler->moviePlugin, plugin.get());
}

TEST_F(Instance, KeepsItsFieldsInTheirOrder)
{
    Open();
    const auto place = [](const auto& field) { return reinterpret_cast<std::uintptr_t>(&field); };
    const std::vector<std::uintptr_t> places = {
        place(handler->self),          place(handler->delegate),      place(handler->moviePlugin),
        place(handler->availableSize), place(handler->finalSize),     place(handler->loadComplete),
        place(handler->canSpoolAhead), place(handler->inCallbacks),   place(handler->isMpeg),
        place(handler->qtVersion),     place(handler->scheduleQueue), place(handler->readQueue),
        place(handler->fileSizeQueue)};
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

TEST_F(Instance, TakesOverHowFarLoadingHasCome)
{
    Open("video/quicktime", FOUR_CHARS('M', 'o', 'o', 'V'), 700);
    EXPECT_EQ(handler->availableSize, 700);
    EXPECT_FALSE(handler->loadComplete);
    EXPECT_EQ(handler->finalSize, 0);
    EXPECT_FALSE(handler->inCallbacks);
}

TEST_F(Instance, TakesOverThatLoadingIsComplete)
{
    plugin = MakePlugin();
    Spool(*plugin, 700);
    SpoolTheEnd(*plugin);
    ASSERT_EQ(OpenAComponent(gDataHandlerComponent, &instance), noErr);
    handler = dynamic_cast<VornPluginDataHandlerComponent*>(plugin->loadListeners[0]);
    EXPECT_EQ(handler->availableSize, 700);
    EXPECT_EQ(handler->finalSize, 700);
    EXPECT_TRUE(handler->loadComplete);
}

TEST_F(Instance, ClosesItsDelegateAndStopsListening)
{
    Open();
    EXPECT_EQ(CountLiveObjects(kLiveComponentInstances), 2);
    Close();
    EXPECT_EQ(CountLiveObjects(kLiveComponentInstances), 0);
    EXPECT_EQ(plugin->loadListeners[0], nullptr);
}

TEST_F(Instance, StopsListeningThenClosesItsDelegateThenDropsItsRequests)
{
    Open();
    Schedule(buffer, 0, 100);
    const VornMovieLoadListener* listening = handler;
    bool hasRequest = false;
    probe.onCall = [&](const std::string& call) {
        if (call == "CloseComponent" && probe.Count("CloseComponent") == 1) { // the delegate's
            listening = plugin->loadListeners[0];
            handler->scheduleQueue.ResetToFirst();
            hasRequest = handler->scheduleQueue.NextItem() != nullptr;
        }
    };
    Close();
    probe.onCall = nullptr;
    EXPECT_EQ(listening, nullptr);
    EXPECT_TRUE(hasRequest);
}

TEST_F(Instance, ClosesAfterThePluginHasDied)
{
    Open();
    KillPlugin();
    Close();
    EXPECT_EQ(CountLiveObjects(kLiveComponentInstances), 0);
}

TEST_F(Instance, CompletesNothingWhenItIsClosed)
{
    Open();
    Schedule(buffer, 0, 100);
    ReadAsync(buffer, 0, 100);
    wide size = {};
    handler->GetFileSizeAsync(&size, Complete, 0);
    Close();
    EXPECT_TRUE(completions.empty());
}

TEST_F(Instance, ThatWasNeverOpenedClosesQuietly)
{
    EXPECT_EQ(datahandler::Close(nullptr, 0), noErr);
}

TEST_F(Instance, CanDoWhatIsInTheTableOrItsDelegateCan)
{
    Open();
    EXPECT_EQ(CallComponentCanDo(instance, kDataHReadAsyncSelect), 1);
    EXPECT_EQ(CallComponentCanDo(instance, kComponentVersionSelect), 1);
    EXPECT_EQ(CallComponentCanDo(instance, kDataHSetDataRefSelect), 1); // the alias handler's
    EXPECT_EQ(CallComponentCanDo(instance, kDataHGetFileSizeAsyncSelect), 0);
    EXPECT_EQ(CallComponentCanDo(instance, 1000), 0);
}

TEST_F(Instance, WithoutADelegateCanDoOnlyWhatIsInTheTable)
{
    EXPECT_EQ(datahandler::CanDo(nullptr, kDataHTaskSelect), 1);
    EXPECT_EQ(datahandler::CanDo(nullptr, kDataHSetDataRefSelect), 0);
}

TEST_F(Instance, HasTheVersionOfItsDelegate)
{
    Open();
    EXPECT_EQ(CallComponentVersion(instance), CallComponentVersion(handler->delegate));
    EXPECT_GT(CallComponentVersion(instance), 0);
}

// What counts as MPEG ---------------------------------------------------------------------------

struct Kind {
    const char* mimeType;
    OSType fileType;
    bool isMpeg;
};

constexpr OSType kMovieType = FOUR_CHARS('M', 'o', 'o', 'V');
constexpr OSType kMpegType = FOUR_CHARS('M', 'P', 'E', 'G');

class MpegTest : public DataHandlerTest, public testing::WithParamInterface<Kind>
{
};

TEST_P(MpegTest, GoesByMimeTypeAndOnlyWithoutOneByFileType)
{
    Open(GetParam().mimeType, GetParam().fileType);
    EXPECT_EQ(handler->isMpeg != 0, GetParam().isMpeg);
    EXPECT_EQ(handler->canSpoolAhead != 0, GetParam().isMpeg);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, MpegTest,
    testing::Values(Kind{"video/mpeg", kMovieType, true}, Kind{"video/x-mpeg", kMovieType, true},
                    Kind{"audio/mpeg", kMovieType, true}, Kind{"audio/x-mpeg3", kMovieType, true},
                    Kind{"audio/mp3", kMovieType, true}, Kind{"audio/x-mp3", kMovieType, true},
                    Kind{"audio/mpeg3", kMovieType, true}, Kind{"audio/x-mpeg", kMovieType, true},
                    Kind{"Video/MPEG", kMovieType, true}, Kind{"", kMpegType, true},
                    Kind{"", FOUR_CHARS('M', 'p', '3', ' '), true},
                    Kind{"", FOUR_CHARS('M', 'P', 'G', '3'), true},
                    Kind{"", FOUR_CHARS('M', 'P', 'G', '4'), true},
                    Kind{"application/octet-stream", kMpegType, true},
                    Kind{"application/octet-stream", kMovieType, false},
                    Kind{"", kMovieType, false}, Kind{"", FOUR_CHARS('m', 'p', 'e', 'g'), false},
                    Kind{"video/quicktime", kMpegType, false},
                    Kind{"video/mpeg4", kMpegType, false}, Kind{"video/mp", kMovieType, false}));

TEST_F(Instance, SpoolsAheadOnlyFromVersion5On)
{
    SetGestaltValue(gestaltQuickTime, 0x04FFFFFF);
    OpenForMpeg();
    EXPECT_EQ(handler->qtVersion, 0x04FF);
    EXPECT_TRUE(handler->isMpeg);
    EXPECT_FALSE(handler->canSpoolAhead);
    Close();
    KillPlugin();
    SetGestaltValue(gestaltQuickTime, 0x05000000);
    OpenForMpeg();
    EXPECT_EQ(handler->qtVersion, 0x0500);
    EXPECT_TRUE(handler->canSpoolAhead);
}

} // namespace
} // namespace test

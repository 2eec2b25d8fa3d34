// SPDX-License-Identifier: MIT
#include "tests/datahandler/DataHandlerTest.h"
#include "tests/support/CooperativeThread.h"
#include "toolbox/memory/Memory.h"

namespace test
{
namespace
{

// All three threads at work: the decoding thread spools, and the tasking thread, while it opens
// the movie, reads through the data handler what has not arrived yet.
class WaitingRead : public DataHandlerTest
{
protected:
    void SetUp() override
    {
        DataHandlerTest::SetUp();
        handle = NewHandle(0);
        host.yields = true;
        host.arrivals.assign(20, 10000);
        plugin = MakePlugin();
        Movies().onCall = [this](const std::string& call) {
            if (call == "NewMovieFromDataRef 1280 no-id KWOB") {
                ReadAsTheMovieOpens();
            }
        };
    }
    void TearDown() override
    {
        Movies().onCall = nullptr;
        DisposeHandle(handle);
        DataHandlerTest::TearDown();
    }
    void ReadAsTheMovieOpens()
    {
        ASSERT_EQ(OpenAComponent(gDataHandlerComponent, &instance), noErr);
        result = Call(kDataHGetDataSelect, handle, 0, 0, 150000);
    }

    Handle handle = nullptr;
    ComponentResult result = 1; // none yet
};

TEST_F(WaitingRead, GetsItsBytesWhileTheyAreSpooled)
{
    const CooperativeThread decoding([this] { plugin->Decode(); });
    while (!decoding.HasEnded() || plugin->taskingThread != kNoThreadID) {
        YieldToAnyThread();
    }
    EXPECT_EQ(result, noErr);
    ASSERT_EQ(GetHandleSize(handle), 150000);
    EXPECT_TRUE(Holds(*handle, 0, 150000));
    EXPECT_EQ(host.told, Calls{"renderingDone 0"});
}

TEST_F(WaitingRead, IsBrokenOffWhenThePluginIsDestroyed)
{
    host.onGetData = [this] {
        if (host.arrived == 100000) {
            host.failure = ioErr; // the read waits for ever from now on
        }
    };
    const CooperativeThread decoding(
        [this] { EXPECT_EQ(ThrownBy([this] { plugin->Decode(); }), ioErr); });
    while (!decoding.HasEnded()) {
        YieldToAnyThread();
    }
    YieldToAnyThread();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(CountLiveObjects(kLiveThreads), 1);
    KillPlugin();
    EXPECT_EQ(result, paramErr);
    EXPECT_EQ(CountLiveObjects(kLiveThreads), 0);
    EXPECT_EQ(HGetState(handle) & 0x80, 0);
}

} // namespace
} // namespace test

// SPDX-License-Identifier: MIT
#include "tests/plugin/VirtualSlot.h"
#include "tests/support/CooperativeThread.h"
#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"

#include <gmock/gmock.h>

#include <functional>

namespace test
{
namespace
{

using testing::InSequence;
using testing::StrictMock;

class MockListener : public VornMovieLoadListener
{
public:
    MOCK_METHOD(void, LoadComplete, (SInt32), (override));
    MOCK_METHOD(void, LoadProgress, (SInt32), (override));
    MOCK_METHOD(void, NotifyListenerOfPluginDeath, (), (override));
};

class LoadListeners : public MovieTest
{
protected:
    StrictMock<MockListener> first;
    StrictMock<MockListener> second;
};

TEST_F(LoadListeners, HearProgressInTheOrderTheyWereAdded)
{
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&second);
    plugin->AddLoadListener(&first);
    const InSequence order;
    EXPECT_CALL(second, LoadProgress(7));
    EXPECT_CALL(first, LoadProgress(7));
    plugin->NotifyListenersProgress(7);
    EXPECT_CALL(second, LoadComplete(9));
    EXPECT_CALL(first, LoadComplete(9));
    plugin->NotifyListenersComplete(9);
    EXPECT_CALL(second, NotifyListenerOfPluginDeath);
    EXPECT_CALL(first, NotifyListenerOfPluginDeath);
    plugin.reset();
}

TEST_F(LoadListeners, AreKeptOnceHoweverOftenTheyAreAdded)
{
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&first);
    plugin->AddLoadListener(&first);
    EXPECT_EQ(plugin->loadListeners.count, 1);
    EXPECT_CALL(first, LoadProgress(7)).Times(1);
    plugin->NotifyListenersProgress(7);
    EXPECT_CALL(first, NotifyListenerOfPluginDeath);
}

TEST_F(LoadListeners, LeaveAHoleThatWalksSkip)
{
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&first);
    plugin->AddLoadListener(&second);
    plugin->RemoveLoadListener(&first);
    EXPECT_EQ(plugin->loadListeners.count, 2);
    EXPECT_EQ(plugin->loadListeners.items[0], nullptr);
    EXPECT_CALL(second, LoadProgress(7));
    plugin->NotifyListenersProgress(7);
    EXPECT_CALL(second, LoadComplete(8));
    plugin->NotifyListenersComplete(8);
    EXPECT_CALL(second, NotifyListenerOfPluginDeath);
}

TEST_F(LoadListeners, GetANewEntryWhenTheyComeBack)
{
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&first);
    plugin->RemoveLoadListener(&first);
    plugin->AddLoadListener(&first);
    EXPECT_EQ(plugin->loadListeners.count, 2);
    EXPECT_EQ(plugin->loadListeners.items[0], nullptr);
    EXPECT_EQ(plugin->loadListeners.items[1], &first);
    EXPECT_CALL(first, NotifyListenerOfPluginDeath);
}

TEST_F(LoadListeners, RemovingAStrangerChangesNothing)
{
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&first);
    plugin->RemoveLoadListener(&second);
    EXPECT_EQ(plugin->loadListeners.items[0], &first);
    EXPECT_CALL(first, NotifyListenerOfPluginDeath);
}

TEST_F(LoadListeners, TakeFourPlacesAtATime)
{
    auto plugin = MakePlugin();
    std::array<testing::NiceMock<MockListener>, 5> many;
    plugin->AddLoadListener(&many[0]);
    EXPECT_EQ(plugin->loadListeners.capacity, 4);
    for (auto& listener : many) {
        plugin->AddLoadListener(&listener);
    }
    EXPECT_EQ(plugin->loadListeners.count, 5);
    EXPECT_EQ(plugin->loadListeners.capacity, 8);
    plugin.reset();
}

TEST_F(LoadListeners, AddedDuringAWalkHearItToo)
{
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&first);
    EXPECT_CALL(first, LoadProgress(7)).WillOnce([&] { plugin->AddLoadListener(&second); });
    EXPECT_CALL(second, LoadProgress(7));
    plugin->NotifyListenersProgress(7);
    EXPECT_CALL(first, NotifyListenerOfPluginDeath);
    EXPECT_CALL(second, NotifyListenerOfPluginDeath);
}

TEST_F(LoadListeners, RemovedDuringAWalkDoNotHearIt)
{
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&first);
    plugin->AddLoadListener(&second);
    EXPECT_CALL(first, LoadProgress(7)).WillOnce([&] { plugin->RemoveLoadListener(&second); });
    plugin->NotifyListenersProgress(7);
    EXPECT_CALL(first, NotifyListenerOfPluginDeath);
}

TEST_F(LoadListeners, AreWalkedWithTestedIndexes)
{
    auto plugin = MakePlugin();
    plugin->loadListeners.count = 1; // more than there are places
    EXPECT_EQ(ThrownBy([&] { plugin->NotifyListenersProgress(7); }), paramErr);
    EXPECT_EQ(ThrownBy([&] { plugin->NotifyListenersComplete(7); }), paramErr);
    EXPECT_EQ(ThrownBy([&] { plugin->NotifyListenersTermination(); }), paramErr);
    plugin->loadListeners.count = 0;
}

TEST_F(LoadListeners, HearOfCompletionBeforeTheController)
{
    auto plugin = MakePlayingPlugin();
    plugin->AddLoadListener(&first);
    EXPECT_CALL(first, LoadComplete(9)).WillOnce([&] {
        EXPECT_EQ(probe.Count("MCMovieChanged"), 0);
    });
    plugin->NotifyListenersComplete(9);
    EXPECT_EQ(probe.Count("MCMovieChanged"), 1);
    EXPECT_CALL(first, NotifyListenerOfPluginDeath);
}

TEST_F(LoadListeners, AreToldAloneWithoutAController)
{
    auto plugin = MakePlugin();
    plugin->NotifyListenersComplete(9);
    EXPECT_EQ(probe.Count("MCMovieChanged"), 0);
}

#ifdef VORN_KNOWS_VIRTUAL_SLOTS
TEST(LoadListenerLayout, KeepsTheOrderOfTheVirtualOperations)
{
    EXPECT_EQ(VirtualSlot(&VornMovieLoadListener::LoadComplete), 2u);
    EXPECT_EQ(VirtualSlot(&VornMovieLoadListener::LoadProgress), 3u);
    EXPECT_EQ(VirtualSlot(&VornMovieLoadListener::NotifyListenerOfPluginDeath), 4u);
}
#endif

// Thread tests --------------------------------------------------------------------------------

class ThreadTests : public MovieTest
{
protected:
    struct Answers {
        bool decoding;
        bool tasking;
        bool application;
        bool operator==(const Answers&) const = default;
    };
    static Answers AnswersOf(const VornMoviePlugin& plugin)
    {
        return {plugin.OnDecodingThread() != 0, plugin.OnTaskingThread() != 0,
                plugin.OnApplicationThread() != 0};
    }
    // Runs `body` on a thread of its own, to its end.
    static void RunOnThread(const std::function<void()>& body)
    {
        const CooperativeThread thread(body);
        YieldToAnyThread();
        EXPECT_TRUE(thread.HasEnded());
    }
    static ThreadID CurrentThread()
    {
        ThreadID thread = kNoThreadID;
        GetCurrentThread(&thread);
        return thread;
    }
};

TEST_F(ThreadTests, KnowTheApplicationThread)
{
    EXPECT_EQ(AnswersOf(*MakePlugin()), (Answers{false, false, true}));
}

TEST_F(ThreadTests, KnowTheDecodingThread)
{
    auto plugin = MakePlugin();
    RunOnThread([&] {
        plugin->decodingThread = CurrentThread();
        EXPECT_EQ(AnswersOf(*plugin), (Answers{true, false, false}));
    });
    EXPECT_EQ(AnswersOf(*plugin), (Answers{false, false, true}));
}

TEST_F(ThreadTests, KnowTheTaskingThread)
{
    auto plugin = MakePlugin();
    RunOnThread([&] {
        plugin->taskingThread = CurrentThread();
        EXPECT_EQ(AnswersOf(*plugin), (Answers{false, true, false}));
    });
    plugin->taskingThread = kNoThreadID;
}

TEST_F(ThreadTests, KnowNobodyOnAStrangersThread)
{
    auto plugin = MakePlugin();
    RunOnThread([&] { EXPECT_EQ(AnswersOf(*plugin), (Answers{false, false, false})); });
}

TEST_F(ThreadTests, TheDecodingThreadMayBeTheApplicationThread)
{
    auto plugin = MakePlugin();
    plugin->decodingThread = CurrentThread();
    EXPECT_EQ(AnswersOf(*plugin), (Answers{true, false, true}));
}

TEST_F(ThreadTests, AnswerNoOnceTheTaskingThreadHasEnded)
{
    auto plugin = MakePlugin();
    plugin->moviePort = port;
    plugin->allDataSpooled = true;
    RunOnThread([&] {
        plugin->taskingThread = CurrentThread();
        plugin->MovieTaskingThread();
        EXPECT_FALSE(plugin->OnTaskingThread());
    });
    EXPECT_EQ(plugin->taskingThread, kNoThreadID);
}

TEST_F(ThreadTests, AnswerNoWhenTheCurrentThreadCannotBeTold)
{
    auto plugin = MakePlugin();
    plugin->decodingThread = CurrentThread();
    probe.Fail("GetCurrentThread", threadProtocolErr);
    EXPECT_FALSE(plugin->OnDecodingThread());
    EXPECT_TRUE(plugin->OnDecodingThread());

    plugin->taskingThread = plugin->decodingThread;
    probe.Fail("GetCurrentThread", threadProtocolErr);
    EXPECT_FALSE(plugin->OnTaskingThread());
    EXPECT_TRUE(plugin->OnTaskingThread());
    plugin->taskingThread = kNoThreadID;
}

TEST_F(ThreadTests, AnswerNoWhenTheApplicationThreadsStateCannotBeTold)
{
    const auto plugin = MakePlugin();
    probe.Fail("GetThreadState", threadNotFoundErr);
    EXPECT_FALSE(plugin->OnApplicationThread());
    EXPECT_TRUE(plugin->OnApplicationThread());
}

} // namespace
} // namespace test

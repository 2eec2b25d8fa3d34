// SPDX-License-Identifier: MIT
#include "tests/support/CooperativeThread.h"
#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"

#include <stdexcept>

namespace test
{
namespace
{

const Calls kMovieCalls = {"NewMovieFromDataRef", "MoviesTask"};
const char* const kAsyncOpen = "NewMovieFromDataRef 1280 no-id KWOB";
const char* const kSyncOpen = "NewMovieFromDataRef 0 no-id KWOB";
const char* const kTask = "MoviesTask 0";

// The tasking thread alone: tests set how far spooling has come and give it passes.
class TaskingThread : public MovieTest
{
protected:
    void SetUp() override
    {
        MovieTest::SetUp();
        plugin = MakePlugin();
        plugin->moviePort = port;
    }
    void TearDown() override
    {
        Movies().onCall = nullptr;
        plugin.reset();
        MovieTest::TearDown();
    }

    void Start()
    {
        ASSERT_EQ(NewThread(kCooperativeThread, VornMoviePlugin::TaskingThreadEntry, plugin.get(),
                            65536, 0, nullptr, &plugin->taskingThread),
                  noErr);
        probe.Forget();
    }
    static void Pass() { YieldToAnyThread(); }
    Calls MovieCalls() const { return probe.Calls(kMovieCalls); }

    std::unique_ptr<VornMoviePlugin> plugin;
};

TEST_F(TaskingThread, OpensNothingWith65536Bytes)
{
    plugin->bytesSpooled = 65536;
    Start();
    Pass();
    EXPECT_EQ(MovieCalls(), Calls{});
}

TEST_F(TaskingThread, OpensTheMovieWith65537Bytes)
{
    plugin->bytesSpooled = 65537;
    Start();
    Pass();
    EXPECT_EQ(MovieCalls(), Calls{kAsyncOpen});
    EXPECT_NE(plugin->movie, nullptr);
}

TEST_F(TaskingThread, OpensTheMovieAsSoonAsThereAreEnough)
{
    Start();
    for (const SInt32 bytes : {0, 16384, 65536}) {
        plugin->bytesSpooled = bytes;
        Pass();
    }
    EXPECT_EQ(MovieCalls(), Calls{});
    plugin->bytesSpooled = 81920;
    Pass();
    EXPECT_EQ(MovieCalls(), Calls{kAsyncOpen});
}

TEST_F(TaskingThread, TasksAnOpenMovieOnceAPass)
{
    plugin->bytesSpooled = 65537;
    Start();
    Pass();
    Pass();
    Pass();
    EXPECT_EQ(MovieCalls(), (Calls{kAsyncOpen, kTask, kTask}));
}

TEST_F(TaskingThread, TriesAgainOnlyAfter120Ticks)
{
    plugin->bytesSpooled = 65537;
    Movies().openResult = noMovieFound;
    clock.GoToTick(1000);
    Start();
    Pass();
    EXPECT_EQ(MovieCalls().size(), 1u);
    clock.GoToTick(1120); // not more than 120 later
    Pass();
    EXPECT_EQ(MovieCalls().size(), 1u);
    clock.GoToTick(1121);
    Pass();
    EXPECT_EQ(MovieCalls(), (Calls{kAsyncOpen, kAsyncOpen}));
    clock.GoToTick(1241);
    Pass();
    EXPECT_EQ(MovieCalls().size(), 2u);
    clock.GoToTick(1242);
    Pass();
    EXPECT_EQ(MovieCalls().size(), 3u);
}

TEST_F(TaskingThread, CountsTheTicksFromTheEndOfAFailedOpen)
{
    plugin->bytesSpooled = 65537;
    Movies().openResult = noMovieFound;
    Movies().onCall = [this](const std::string& call) {
        if (call == kAsyncOpen) {
            clock.GoToTick(500); // opening took that long
        }
    };
    Start();
    Pass();
    clock.GoToTick(620);
    Pass();
    EXPECT_EQ(MovieCalls().size(), 1u);
    clock.GoToTick(621);
    Pass();
    EXPECT_EQ(MovieCalls().size(), 2u);
}

TEST_F(TaskingThread, OpensAtTickOne)
{
    plugin->bytesSpooled = 65537;
    EXPECT_EQ(TickCount(), 1u);
    Start();
    Pass();
    EXPECT_EQ(MovieCalls(), Calls{kAsyncOpen});
}

TEST_F(TaskingThread, ComparesTheTicksWithoutSign)
{
    plugin->bytesSpooled = 65537;
    clock.GoToTick(0x80000001);
    ASSERT_EQ(TickCount(), 0x80000001);
    Start();
    Pass();
    EXPECT_EQ(MovieCalls(), Calls{kAsyncOpen});
}

TEST_F(TaskingThread, OpensACompleteMovieSynchronouslyAndEnds)
{
    plugin->bytesSpooled = 100;
    plugin->allDataSpooled = true;
    Start();
    Pass();
    EXPECT_EQ(MovieCalls(), Calls{kSyncOpen});
    EXPECT_EQ(plugin->taskingThread, kNoThreadID);
    EXPECT_EQ(CountLiveObjects(kLiveThreads), 0);
}

TEST_F(TaskingThread, DoesNotWaitForTheTickWhenAllIsIn)
{
    plugin->bytesSpooled = 65537;
    Movies().openResult = noMovieFound;
    Start();
    Pass();
    plugin->allDataSpooled = true;
    Pass();
    EXPECT_EQ(MovieCalls(), (Calls{kAsyncOpen, kSyncOpen}));
}

TEST_F(TaskingThread, TakesTheLastFailureAsFinal)
{
    plugin->allDataSpooled = true;
    Movies().openResult = noMovieFound;
    Start();
    Pass();
    clock.GoToTick(1000);
    Pass();
    Pass();
    EXPECT_EQ(MovieCalls(), Calls{kSyncOpen});
    EXPECT_EQ(plugin->movie, nullptr);
    EXPECT_EQ(plugin->taskingThread, kNoThreadID);
}

TEST_F(TaskingThread, TasksTheMovieInTheVeryPassInWhichAllIsInAndNoMore)
{
    plugin->bytesSpooled = 65537;
    Start();
    Pass();
    plugin->allDataSpooled = true;
    Pass();
    EXPECT_EQ(MovieCalls(), (Calls{kAsyncOpen, kTask}));
    EXPECT_EQ(plugin->taskingThread, kNoThreadID);
    Pass();
    EXPECT_EQ(MovieCalls().size(), 2u);
}

TEST_F(TaskingThread, LooksAgainWhetherAllIsInAfterTasking)
{
    plugin->bytesSpooled = 65537;
    Start();
    Pass();
    Movies().onCall = [this](const std::string& call) { plugin->allDataSpooled = call == kTask; };
    Pass();
    EXPECT_EQ(plugin->taskingThread, kNoThreadID);
}

TEST_F(TaskingThread, WorksInTheMoviesPortAndPutsItsOwnBack)
{
    const Rect bounds{0, 0, 10, 10};
    CGrafPtr other = nullptr;
    ASSERT_EQ(CreateWindowPort(&bounds, &other), noErr);
    SetPort(other);
    plugin->bytesSpooled = 65537;
    Start(); // inherits the other port
    CGrafPtr portBetweenPasses = nullptr;
    probe.onCall = [&](const std::string& call) {
        if (call == "YieldToAnyThread") {
            GetPort(&portBetweenPasses);
        }
    };
    Pass();
    EXPECT_EQ(Movies().portAtOpen, port);
    EXPECT_EQ(portBetweenPasses, other);
    Pass();
    EXPECT_EQ(Movies().portAtTask, port);
    EXPECT_EQ(portBetweenPasses, other);
    probe.onCall = nullptr;
    SetPort(port);
    plugin.reset();
    DisposeWindowPort(other);
}

TEST_F(TaskingThread, YieldsOnceAPass)
{
    int passes = 0;
    CooperativeThread counter([&] {
        for (;;) {
            ++passes;
            YieldToAnyThread();
        }
    });
    Start();
    probe.Forget();
    for (int round = 0; round < 5; ++round) {
        Pass();
    }
    EXPECT_EQ(passes, 5);
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 15); // of three threads
}

TEST_F(TaskingThread, EndsQuietlyWhenAnExceptionEscapesItsLoop)
{
    plugin->bytesSpooled = 65537;
    Start();
    Pass();
    const ThreadID thread = plugin->taskingThread;
    Movies().onCall = [](const std::string& call) {
        if (call == kTask) {
            throw std::runtime_error("the movie fails");
        }
    };
    EXPECT_NO_THROW(Pass());
    Movies().onCall = nullptr;
    EXPECT_EQ(plugin->taskingThread, thread); // for the destructor to dispose of
    EXPECT_EQ(CountLiveObjects(kLiveThreads), 0);
    EXPECT_NO_THROW(plugin.reset());
    EXPECT_EQ(probe.Count("DisposeThread"), 1);
}

// Straight through the entry: nobody above it would hide what it lets out.
template <typename Thrown>
void LetTaskingThrow(VornMoviePlugin& plugin, const Thrown& thrown)
{
    ASSERT_EQ(plugin.OpenMovie(true, true), noErr);
    Movies().onCall = [thrown](const std::string& call) {
        if (call == kTask) {
            throw thrown;
        }
    };
    void* result = &plugin;
    EXPECT_NO_THROW(result = VornMoviePlugin::TaskingThreadEntry(&plugin));
    EXPECT_EQ(result, nullptr);
}

TEST_F(TaskingThread, LetsNoExceptionOutOfItsEntry)
{
    LetTaskingThrow(*plugin, std::runtime_error("the movie fails"));
}

TEST_F(TaskingThread, LetsNoThrownNumberOutOfItsEntry)
{
    LetTaskingThrow(*plugin, SInt32{notEnoughDataErr});
}

TEST_F(TaskingThread, SwallowsAnErrorThrownWhileOpening)
{
    plugin->bytesSpooled = 65537;
    Movies().onCall = [](const std::string& call) {
        if (call == kAsyncOpen) {
            throw OSErr{ioErr};
        }
    };
    EXPECT_EQ(VornMoviePlugin::TaskingThreadEntry(plugin.get()), nullptr);
    Movies().onCall = nullptr;
    CGrafPtr current = nullptr;
    GetPort(&current);
    EXPECT_EQ(current, port);
}

TEST_F(TaskingThread, IsDisposedOfWhileItRuns)
{
    plugin->bytesSpooled = 65537;
    Start();
    Pass();
    EXPECT_EQ(CountLiveObjects(kLiveThreads), 1);
    probe.Forget();
    plugin.reset();
    EXPECT_EQ(CountLiveObjects(kLiveThreads), 0);
    EXPECT_EQ(probe.Calls({"DisposeThread", "StopMovie", "DisposeMovie"}),
              (Calls{"DisposeThread", "StopMovie", "DisposeMovie"}));
}

TEST_F(TaskingThread, RunsUntilRenderingHasAllData)
{
    host.FillObject(150000);
    host.yields = true;
    for (int part = 0; part < 15; ++part) {
        host.arrivals.push_back(10000);
    }
    probe.Forget();
    plugin->Render();
    EXPECT_NE(plugin->movie, nullptr);
    const Calls calls = MovieCalls();
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(calls[0], kAsyncOpen);
    EXPECT_EQ(calls[1], kTask);
    while (plugin->taskingThread != kNoThreadID) {
        Pass();
    }
}

} // namespace
} // namespace test

// SPDX-License-Identifier: MIT
#include "tests/toolbox/ThreadsTest.h"
#include "tests/toolbox/FailingOperations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace test;

namespace
{

size_t AddressSpaceInUse()
{
    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

TEST_F(Threads, StartWithTheApplicationThread)
{
    EXPECT_EQ(ThreadID{kApplicationThreadID}, CurrentThread());
}

TEST_F(Threads, RunOnlyWhenSomeoneYields)
{
    bool ran = false;
    Start([&] { ran = true; });
    EXPECT_FALSE(ran);
    YieldToAnyThread();
    EXPECT_TRUE(ran);
}

TEST_F(Threads, YieldReturnsAtOnceWhenNothingElseIsReady)
{
    EXPECT_EQ(noErr, YieldToAnyThread());
}

TEST_F(Threads, EveryOtherReadyThreadGetsOneTurnBeforeTheYielderRunsAgain)
{
    for (const char name : {'a', 'b', 'c'}) {
        Start([this, name] {
            for (int turn = 0; turn < 2; ++turn) {
                log_ += name;
                YieldToAnyThread();
            }
        });
    }
    YieldToAnyThread();
    EXPECT_EQ("abc", log_);
    YieldToAnyThread();
    EXPECT_EQ("abcabc", log_);
}

TEST_F(Threads, AThreadMadeByAThreadGetsItsTurnInTheSameRound)
{
    Start([this] {
        log_ += "maker ";
        Start([this] { log_ += "made"; });
    });
    YieldToAnyThread();
    EXPECT_EQ("maker made", log_);
}

TEST_F(Threads, IdentifiersAreNeverUsedTwice)
{
    std::vector<ThreadID> seen;
    for (int round = 0; round < 50; ++round) {
        seen.push_back(Start([] {}));
        YieldToAnyThread();
    }
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(seen.end(), std::adjacent_find(seen.begin(), seen.end()));
    EXPECT_GT(seen.front(), ThreadID{kApplicationThreadID});
}

TEST_F(Threads, GetCurrentThreadTellsWhoRuns)
{
    ThreadID inside = kNoThreadID;
    const ThreadID made = Start([&] { inside = CurrentThread(); });
    YieldToAnyThread();
    EXPECT_EQ(made, inside);
}

TEST_F(Threads, OnlyTheCurrentThreadIsInRunningState)
{
    ThreadState application = 99;
    ThreadState own = 99;
    const ThreadID made = Start([&] {
        GetThreadState(kApplicationThreadID, &application);
        GetThreadState(kCurrentThreadID, &own);
    });
    ThreadState suspended = 99;
    EXPECT_EQ(noErr, GetThreadState(made, &suspended));
    YieldToAnyThread();
    EXPECT_EQ(kReadyThreadState, suspended);
    EXPECT_EQ(kReadyThreadState, application);
    EXPECT_EQ(kRunningThreadState, own);
    EXPECT_EQ(noErr, GetThreadState(kApplicationThreadID, &application));
    EXPECT_EQ(kRunningThreadState, application);
}

TEST_F(Threads, AFinishedThreadIsNotFound)
{
    const ThreadID made = Start([] {});
    YieldToAnyThread();
    ThreadState state = 0;
    EXPECT_EQ(threadNotFoundErr, GetThreadState(made, &state));
    EXPECT_EQ(threadNotFoundErr, DisposeThread(made, nullptr, false));
}

TEST_F(Threads, TheEntrysResultIsStored)
{
    void* result = nullptr;
    Start([] {}, 0, &result);
    YieldToAnyThread();
    EXPECT_EQ(bodies_.back().get(), result);
}

TEST_F(Threads, AnotherStyleThanCooperativeIsRefused)
{
    ThreadID thread = 77;
    EXPECT_EQ(paramErr, NewThread(2, RunBody, nullptr, 0, 0, nullptr, &thread));
    EXPECT_EQ(77U, thread);
}

TEST_F(Threads, NoAddressSpaceForTheStackGivesMemFullErr)
{
#ifdef VORN_EMULATED
    GTEST_SKIP() << "the emulator does not limit the address space";
#endif
    rlimit before{};
    getrlimit(RLIMIT_AS, &before);
    rlimit tight = before;
    tight.rlim_cur = AddressSpaceInUse() + (size_t{256} << 20);
    setrlimit(RLIMIT_AS, &tight);
    ThreadID thread = 77;
    const OSErr err = NewThread(kCooperativeThread, RunBody, nullptr, 1 << 30, 0, nullptr, &thread);
    setrlimit(RLIMIT_AS, &before);
    EXPECT_EQ(memFullErr, err);
    EXPECT_EQ(77U, thread);
    EXPECT_EQ(0, CountLiveObjects(kLiveThreads));
}

TEST_F(Threads, AnExceptionThatLeavesTheEntryEndsTheThreadAlone)
{
    const ThreadID made = Start([] { throw std::runtime_error("lost"); });
    YieldToAnyThread();
    EXPECT_FALSE(Exists(made));
}

TEST_F(Threads, TheStatisticsOwnerIsInheritedFromTheMaker)
{
    int owner = 0;
    int other = 0;
    void* inherited = nullptr;
    SetStatisticsOwner(&owner);
    Start([&] {
        inherited = GetStatisticsOwner();
        SetStatisticsOwner(&other);
    });
    SetStatisticsOwner(nullptr);
    YieldToAnyThread();
    EXPECT_EQ(&owner, inherited);
    EXPECT_EQ(nullptr, GetStatisticsOwner());
}

TEST_F(Threads, EachKeepsItsErrno)
{
    int seen = 0;
    Start([&] {
        errno = ENOSPC;
        YieldToAnyThread();
        seen = errno;
    });
    errno = EBADF;
    YieldToAnyThread();
    EXPECT_EQ(EBADF, errno);
    YieldToAnyThread();
    EXPECT_EQ(ENOSPC, seen);
}

TEST_F(Threads, YieldingInsideCatchBlocksEachRethrowsItsOwnValue)
{
    std::vector<OSErr> rethrown;
    for (const OSErr mine : {OSErr{-39}, OSErr{1207}}) {
        Start([&rethrown, mine] {
            try {
                try {
                    throw mine;
                } catch (OSErr) {
                    YieldToAnyThread();
                    throw;
                }
            } catch (OSErr caught) {
                rethrown.push_back(caught);
            }
        });
    }
    YieldToAnyThread();
    YieldToAnyThread();
    EXPECT_EQ((std::vector<OSErr>{-39, 1207}), rethrown);
}

// The catch blocks here end in another order than they began.
TEST_F(Threads, OverlappingCatchBlocksLeaveNoExceptionBehind)
{
    Start([] {
        try {
            throw OSErr{-39};
        } catch (OSErr) {
            YieldToAnyThread();
        }
    });
    try {
        throw std::string("application");
    } catch (const std::string& text) {
        YieldToAnyThread();
        YieldToAnyThread();
        EXPECT_EQ("application", text);
        EXPECT_THROW(throw, std::string);
    }
    EXPECT_EQ(nullptr, std::current_exception());
}

TEST_F(Threads, AThreadStartedDuringUnwindingSeesNoExceptionInFlight)
{
    struct YieldsNothingButStarts {
        std::function<void()> start;
        ~YieldsNothingButStarts() { start(); }
    };
    int inFlight = -1;
    const ThreadID victim = Start([&] {
        const std::shared_ptr<void> owned(nullptr,
                                          [&](void*) { inFlight = std::uncaught_exceptions(); });
        for (;;) {
            YieldToAnyThread();
        }
    });
    YieldToAnyThread();
    try {
        const YieldsNothingButStarts disposer{[&] { DisposeThread(victim, nullptr, false); }};
        throw OSErr{-1};
    } catch (OSErr) {
    }
    EXPECT_EQ(1, inFlight); // its own disposal, not the application thread's
}

TEST_F(Threads, AnExceptionMayBeHandedToAThreadWhileItsMakerIsInsideItsCatchBlock)
{
    std::exception_ptr handed;
    Start([&] {
        try {
            throw std::string("both");
        } catch (const std::string&) {
            handed = std::current_exception();
            YieldToAnyThread();
            EXPECT_THROW(throw, std::string);
        }
    });
    Start([&] { EXPECT_THROW(std::rethrow_exception(std::exchange(handed, {})), std::string); });
    YieldToAnyThread();
    EXPECT_EQ(nullptr, handed);
    YieldToAnyThread();
}

TEST_F(Threads, TenThousandMayLiveAtOnce)
{
    int ran = 0;
    for (int made = 0; made < 10000; ++made) {
        Start([&ran] {
            YieldToAnyThread();
            ++ran;
        });
    }
    YieldToAnyThread();
    EXPECT_EQ(10000, CountLiveObjects(kLiveThreads));
    YieldToAnyThread();
    EXPECT_EQ(10000, ran);
    EXPECT_EQ(0, CountLiveObjects(kLiveThreads));
}

TEST_F(Threads, TheStackSizeIsAMinimum)
{
    bool done = false;
    Start(
        [&] {
            UseStack(150 * 1024);
            done = true;
        },
        65536);
    Start([&] { UseStack(700 * 1024); }, 1 << 20);
    YieldToAnyThread();
    EXPECT_TRUE(done);
}

TEST_F(Threads, AFailingYieldGivesNobodyATurn)
{
    bool ran = false;
    Start([&] { ran = true; });
    {
        const FailingOperations failing(-50, "YieldToAnyThread");
        EXPECT_EQ(-50, YieldToAnyThread());
    }
    EXPECT_FALSE(ran);
    YieldToAnyThread();
    EXPECT_TRUE(ran);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "tests/toolbox/ThreadsTest.h"

#include <stdexcept>

using namespace test;

namespace
{

TEST_F(Threads, DisposalReleasesWhatTheFramesOwnBeforeItReturns)
{
    int released = 0;
    const ThreadID owner = StartOwner(released);
    YieldToAnyThread();
    EXPECT_EQ(noErr, DisposeThread(owner, nullptr, false));
    EXPECT_EQ(1, released);
    EXPECT_EQ(0, CountLiveObjects(kLiveThreads));
    EXPECT_FALSE(Exists(owner));
}

TEST_F(Threads, DisposalIsThrownAgainBehindEveryBarrierThatSwallowsIt)
{
    int released = 0;
    int barriers = 0;
    const ThreadID stubborn = Start([&] {
        const std::shared_ptr<void> owned(nullptr, [&](void*) { ++released; });
        for (int attempt = 0; attempt < 3; ++attempt) {
            try {
                YieldToAnyThread();
                log_ += "yielded";
            } catch (...) {
                ++barriers;
            }
        }
    });
    YieldToAnyThread();
    EXPECT_EQ(noErr, DisposeThread(stubborn, nullptr, false));
    EXPECT_EQ(3, barriers);
    EXPECT_EQ(1, released);
    EXPECT_EQ("", log_);
}

TEST_F(Threads, DisposalIsNoExceptionOfTheStandardLibrary)
{
    const ThreadID thread = Start([&] {
        try {
            YieldToAnyThread();
        } catch (const std::exception&) {
            log_ = "standard";
        } catch (OSErr) {
            log_ = "code";
        } catch (...) {
            log_ = "other";
            throw;
        }
    });
    YieldToAnyThread();
    DisposeThread(thread, nullptr, false);
    EXPECT_EQ("other", log_);
}

TEST_F(Threads, AThreadThatNeverRanIsDropped)
{
    bool ran = false;
    const ThreadID thread = Start([&] { ran = true; });
    EXPECT_EQ(noErr, DisposeThread(thread, nullptr, false));
    YieldToAnyThread();
    EXPECT_FALSE(ran);
    EXPECT_EQ(0, CountLiveObjects(kLiveThreads));
}

TEST_F(Threads, DisposalStoresTheResultItWasGiven)
{
    int value = 0;
    void* suspendedResult = nullptr;
    void* freshResult = nullptr;
    const ThreadID suspended = Start(
        [] {
            try {
                YieldToAnyThread();
            } catch (...) {
                return; // the entry then returns a result of its own
            }
        },
        0, &suspendedResult);
    YieldToAnyThread();
    const ThreadID fresh = Start([] {}, 0, &freshResult);
    DisposeThread(suspended, &value, false);
    DisposeThread(fresh, &value, false);
    EXPECT_EQ(&value, suspendedResult);
    EXPECT_EQ(&value, freshResult);
}

TEST_F(Threads, TheCurrentThreadDisposesOfItselfAtOnce)
{
    for (const bool byAlias : {true, false}) {
        log_.clear();
        Start([this, byAlias] {
            const std::shared_ptr<void> owned(nullptr, [this](void*) { log_ += " released"; });
            log_ += "before";
            DisposeThread(byAlias ? ThreadID{kCurrentThreadID} : CurrentThread(), nullptr, false);
            log_ += " after";
        });
        YieldToAnyThread();
        EXPECT_EQ("before released", log_);
    }
}

TEST_F(Threads, TheApplicationThreadIsNotDisposedOf)
{
    EXPECT_EQ(threadProtocolErr, DisposeThread(kApplicationThreadID, nullptr, false));
    EXPECT_EQ(threadProtocolErr, DisposeThread(kCurrentThreadID, nullptr, false));
}

TEST_F(Threads, OneThreadMayDisposeOfAnother)
{
    int released = 0;
    OSErr err = -1;
    ThreadID after = kNoThreadID;
    const ThreadID owner = StartOwner(released);
    YieldToAnyThread();
    const ThreadID disposer = Start([&] {
        err = DisposeThread(owner, nullptr, false);
        after = CurrentThread();
    });
    YieldToAnyThread();
    EXPECT_EQ(noErr, err);
    EXPECT_EQ(1, released);
    EXPECT_EQ(disposer, after);
}

TEST_F(Threads, ADestructorInADisposedThreadMayDisposeOfTheNext)
{
    int released = 0;
    const ThreadID inner = StartOwner(released);
    const ThreadID outer = Start([&] {
        const std::shared_ptr<void> owned(nullptr,
                                          [&](void*) { DisposeThread(inner, nullptr, false); });
        for (;;) {
            YieldToAnyThread();
        }
    });
    YieldToAnyThread();
    EXPECT_EQ(noErr, DisposeThread(outer, nullptr, false));
    EXPECT_EQ(1, released);
    EXPECT_EQ(0, CountLiveObjects(kLiveThreads));
}

TEST_F(Threads, ADisposedThreadCannotDisposeOfItsDisposer)
{
    ThreadID disposer = kNoThreadID;
    OSErr err = noErr;
    const ThreadID victim = Start([&] {
        const std::shared_ptr<void> owned(
            nullptr, [&](void*) { err = DisposeThread(disposer, nullptr, false); });
        for (;;) {
            YieldToAnyThread();
        }
    });
    disposer = Start([&] { DisposeThread(victim, nullptr, false); });
    YieldToAnyThread();
    EXPECT_EQ(threadProtocolErr, err);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "toolbox/threads/Fiber.h"

#include "toolbox/threads/ThreadGlobals.h"
#include "toolbox/threads/Threads.h"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace
{

using toolbox::Fiber;

// A fiber whose body can reach it.
class Fibers : public testing::Test
{
protected:
    Fiber& Make(std::function<void()> body) { return fiber_.emplace(std::move(body), 0); }
    Fiber& TheFiber() { return *fiber_; }

    std::string log_;

private:
    std::optional<Fiber> fiber_;
};

void* RunFunction(void* param)
{
    (*static_cast<std::function<void()>*>(param))();
    return nullptr;
}

ThreadID StartThread(std::function<void()>& body)
{
    ThreadID thread = kNoThreadID;
    NewThread(kCooperativeThread, RunFunction, &body, 0, 0, nullptr, &thread);
    return thread;
}

ThreadID CurrentThread()
{
    ThreadID thread = kNoThreadID;
    GetCurrentThread(&thread);
    return thread;
}

TEST_F(Fibers, StopInTheMiddleAndGoOnThere)
{
    Fiber& fiber = Make([this] {
        log_ += "a";
        TheFiber().Suspend();
        log_ += "b";
    });
    EXPECT_EQ("", log_);
    fiber.Resume();
    EXPECT_EQ("a", log_);
    fiber.Resume();
    EXPECT_EQ("ab", log_);
}

TEST_F(Fibers, TellHowFarTheyAre)
{
    bool runningInside = false;
    Fiber& fiber = Make([&] {
        runningInside = TheFiber().IsRunning();
        TheFiber().Suspend();
    });
    EXPECT_FALSE(fiber.IsStarted());
    fiber.Resume();
    EXPECT_TRUE(runningInside);
    EXPECT_TRUE(fiber.IsStarted());
    EXPECT_FALSE(fiber.IsRunning());
    EXPECT_FALSE(fiber.IsEnded());
    fiber.Resume();
    EXPECT_TRUE(fiber.IsEnded());
    EXPECT_FALSE(fiber.IsRunning());
}

TEST_F(Fibers, MayBeDestroyedUnstarted)
{
    const auto owned = std::make_shared<int>(1);
    {
        const Fiber fiber([owned] {}, 0);
        EXPECT_EQ(2, owned.use_count());
    }
    EXPECT_EQ(1, owned.use_count());
}

TEST_F(Fibers, AnExceptionThatLeavesTheBodyComesOutOfResumeOnce)
{
    Fiber& fiber = Make([] { throw std::runtime_error("demuxer"); });
    EXPECT_THROW(fiber.Resume(), std::runtime_error);
    EXPECT_TRUE(fiber.IsEnded());
    EXPECT_EQ(nullptr, std::current_exception());
}

TEST_F(Fibers, ResumedInsideACatchBlockDoNotDisturbIt)
{
    Fiber& fiber = Make([this] {
        try {
            throw OSErr{-39};
        } catch (OSErr) {
            TheFiber().Suspend();
            try {
                throw;
            } catch (OSErr err) {
                log_ += std::to_string(err);
            }
        }
    });
    try {
        throw OSErr{1207};
    } catch (OSErr) {
        fiber.Resume();
        try {
            throw;
        } catch (OSErr err) {
            log_ += std::to_string(err);
        }
    }
    fiber.Resume();
    EXPECT_EQ("1207-39", log_);
}

// As a movie's end resumes its fibers while an exception leaves the frame that owns the movie.
TEST_F(Fibers, ResumedDuringUnwindingLeaveTheExceptionInFlightAlone)
{
    struct Resumer {
        Fiber& fiber;
        ~Resumer() { fiber.Resume(); }
    };
    Fiber& fiber = Make([this] {
        log_ += std::to_string(std::uncaught_exceptions());
        try {
            throw OSErr{1207};
        } catch (OSErr err) {
            log_ += " " + std::to_string(err);
        }
    });
    try {
        const Resumer resumer{fiber};
        throw OSErr{-39};
    } catch (OSErr err) {
        log_ += " " + std::to_string(err);
    }
    EXPECT_EQ("0 1207 -39", log_);
    EXPECT_EQ(0, std::uncaught_exceptions());
}

TEST_F(Fibers, AreNotThreadsButRunOnTheirResumersTime)
{
    ThreadID first = kNoThreadID;
    ThreadID second = kNoThreadID;
    Fiber& fiber = Make([&] {
        first = CurrentThread();
        TheFiber().Suspend();
        second = CurrentThread();
    });
    fiber.Resume();
    std::function<void()> body = [&] { fiber.Resume(); };
    const ThreadID thread = StartThread(body);
    YieldToAnyThread();
    EXPECT_EQ(ThreadID{kApplicationThreadID}, first);
    EXPECT_EQ(thread, second);
}

TEST_F(Fibers, AYieldInTheBodyComesBackIntoTheBody)
{
    Fiber& fiber = Make([this] {
        log_ += "in ";
        YieldToAnyThread();
        log_ += "back ";
    });
    std::function<void()> body = [this] { log_ += "other "; };
    StartThread(body);
    fiber.Resume();
    log_ += "out";
    EXPECT_EQ("in other back out", log_);
}

TEST_F(Fibers, TwoThreadsMayEachYieldInsideAFiberOfTheirs)
{
    std::function<void()> body = [this] {
        Fiber fiber(
            [this] {
                log_ += std::to_string(CurrentThread() % 2);
                YieldToAnyThread();
                log_ += std::to_string(CurrentThread() % 2);
            },
            0);
        fiber.Resume();
        log_ += ".";
    };
    const ThreadID first = StartThread(body);
    StartThread(body);
    YieldToAnyThread();
    YieldToAnyThread();
    EXPECT_EQ(first % 2 == 1 ? "101.0." : "010.1.", log_);
}

TEST_F(Fibers, DisposalOfAThreadThatYieldedInTheBodyComesOutOfResume)
{
    std::function<void()> body = [this] {
        const std::shared_ptr<void> outer(nullptr, [this](void*) { log_ += " outer"; });
        Fiber fiber(
            [this] {
                const std::shared_ptr<void> inner(nullptr, [this](void*) { log_ += "inner"; });
                for (;;) {
                    YieldToAnyThread();
                }
            },
            0);
        fiber.Resume();
        log_ += " resumed";
    };
    const ThreadID thread = StartThread(body);
    YieldToAnyThread();
    EXPECT_EQ(0, DisposeThread(thread, nullptr, false));
    EXPECT_EQ("inner outer", log_);
}

// As a callback under a library's frames does it: the disposal is caught, the library returns by
// its error path, the fiber suspends, and the thread hears of it again at its next yield.
TEST_F(Fibers, DisposalSwallowedInTheBodyIsThrownAgainBehindIt)
{
    std::function<void()> body = [this] {
        Fiber* self = nullptr;
        Fiber fiber(
            [&] {
                try {
                    YieldToAnyThread();
                } catch (...) {
                    log_ += "swallowed";
                }
                self->Suspend();
                log_ += " ended";
            },
            0);
        self = &fiber;
        fiber.Resume();
        try {
            YieldToAnyThread();
        } catch (...) {
            log_ += " again";
            fiber.Resume();
            throw;
        }
    };
    const ThreadID thread = StartThread(body);
    YieldToAnyThread();
    DisposeThread(thread, nullptr, false);
    EXPECT_EQ("swallowed again ended", log_);
}

TEST_F(Fibers, TheGlobalsAreThoseOfTheCurrentThread)
{
    int owner = 0;
    void* seen = nullptr;
    Fiber& fiber = Make([&] { seen = toolbox::CurrentThreadGlobals().statisticsOwner; });
    std::function<void()> body = [&] {
        SetStatisticsOwner(&owner);
        fiber.Resume();
    };
    StartThread(body);
    YieldToAnyThread();
    EXPECT_EQ(&owner, seen);
}

TEST_F(Fibers, AnotherThreadIsReadyOnlyWhenThereIsOne)
{
    EXPECT_FALSE(toolbox::IsAnotherThreadReady());
    std::function<void()> body = [] { YieldToAnyThread(); };
    StartThread(body);
    EXPECT_TRUE(toolbox::IsAnotherThreadReady());
    YieldToAnyThread();
    YieldToAnyThread();
    EXPECT_FALSE(toolbox::IsAnotherThreadReady());
}

} // namespace

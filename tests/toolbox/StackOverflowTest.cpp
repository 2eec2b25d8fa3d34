// SPDX-License-Identifier: MIT
#include "tests/toolbox/ThreadsTest.h"
#include "toolbox/threads/Fiber.h"

#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

using namespace test;

namespace
{

class StackOverflow : public Threads
{
protected:
    // Each in a process that has had no cooperative stack before.
    StackOverflow() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    void SetUp() override
    {
#ifdef VORN_EMULATED
        GTEST_SKIP() << "under the emulator the test program cannot start itself";
#endif
    }

    void Overflow()
    {
        Start([] { UseStack(300 * 1024); });
        YieldToAnyThread();
    }
};

void SayAndEnd(int)
{
    static const char text[] = "the host's own handler\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, sizeof text - 1);
    _exit(3);
}

TEST_F(StackOverflow, OfAThreadEndsTheProcessAndIsTold)
{
    EXPECT_DEATH(Overflow(), "vorn: stack overflow: a cooperative thread has used up its stack of "
                             "262144 bytes\n");
}

TEST_F(StackOverflow, OfAFiberIsToldWithItsSize)
{
    EXPECT_DEATH(
        {
            toolbox::Fiber fiber([] { UseStack(600 * 1024); }, 512 * 1024);
            fiber.Resume();
        },
        "stack overflow: .* 524288 bytes\n");
}

TEST_F(StackOverflow, ThatLeapsOverAPageIsToldToo)
{
    EXPECT_DEATH(
        {
            Start([] {
                volatile char* const here = static_cast<volatile char*>(__builtin_frame_address(0));
                here[-(256 + 32) * 1024] = 1; // as a codec's frame with a large array does
            });
            YieldToAnyThread();
        },
        "stack overflow");
}

TEST_F(StackOverflow, GoesOnToWhoeverHandledTheSignalBefore)
{
    EXPECT_EXIT(
        {
            signal(SIGSEGV, SayAndEnd);
            Overflow();
        },
        testing::ExitedWithCode(3), "stack overflow.*\n.*host's own handler");
}

} // namespace

// SPDX-License-Identifier: MIT
//
// A switch to another thread and back, beside the C library's swapcontext.
#include "toolbox/threads/Fiber.h"
#include "toolbox/threads/Threads.h"

#include <benchmark/benchmark.h>
#include <ucontext.h>

#include <vector>

namespace
{

constexpr Size kStackSize = 65536;

void* YieldForever(void*)
{
    for (;;) {
        YieldToAnyThread();
    }
}

// One turn of a round of yields among the application thread and `range` others.
void BM_YieldToThreads(benchmark::State& state)
{
    std::vector<ThreadID> threads(static_cast<size_t>(state.range()));
    for (ThreadID& thread : threads) {
        NewThread(kCooperativeThread, YieldForever, nullptr, kStackSize, 0, nullptr, &thread);
    }
    YieldToAnyThread();
    for (auto _ : state) {
        YieldToAnyThread();
    }
    for (const ThreadID thread : threads) {
        DisposeThread(thread, nullptr, false);
    }
}
BENCHMARK(BM_YieldToThreads)->Arg(0)->Arg(1)->Arg(10)->Arg(100);

void BM_ResumeFiber(benchmark::State& state)
{
    bool isOver = false;
    toolbox::Fiber* self = nullptr;
    toolbox::Fiber fiber(
        [&] {
            while (!isOver) {
                self->Suspend();
            }
        },
        kStackSize);
    self = &fiber;
    for (auto _ : state) {
        fiber.Resume();
    }
    isOver = true;
    fiber.Resume();
}
BENCHMARK(BM_ResumeFiber);

ucontext_t gHere;
ucontext_t gThere;

void SwapForever()
{
    for (;;) {
        swapcontext(&gThere, &gHere);
    }
}

void BM_SwapContextThereAndBack(benchmark::State& state)
{
    std::vector<char> stack(kStackSize);
    getcontext(&gThere);
    gThere.uc_stack.ss_sp = stack.data();
    gThere.uc_stack.ss_size = stack.size();
    gThere.uc_link = nullptr;
    makecontext(&gThere, SwapForever, 0);
    for (auto _ : state) {
        swapcontext(&gHere, &gThere);
    }
}
BENCHMARK(BM_SwapContextThereAndBack);

} // namespace

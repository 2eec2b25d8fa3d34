// SPDX-License-Identifier: MIT
//
// From a selector to the data handler's routine, beside a call through a plain pointer.
#include "src/datahandler/DataHandlerDispatch.h"
#include "toolbox/quicktime/DataHandler.h"

#include <benchmark/benchmark.h>

namespace
{

void BM_FindRoutine(benchmark::State& state)
{
    SInt16 selector = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(FindRoutine(selector));
        selector = static_cast<SInt16>((selector + 1) & 0x3F);
    }
}
BENCHMARK(BM_FindRoutine);

ComponentResult AnswerSlot(void* storage, ComponentSlot slot)
{
    benchmark::DoNotOptimize(storage);
    return static_cast<ComponentResult>(slot);
}

// Four bytes of result, the storage and one slot: codes of 3, the result's in bits 4 and 5.
constexpr ProcInfoType kOneSlot = 0x3F0;

void BM_CallRoutineWithOneSlot(benchmark::State& state)
{
    const DataHandlerRoutine routine = {reinterpret_cast<ComponentFunction>(AnswerSlot), kOneSlot};
    ComponentParameters params{0, 1, kDataHGetFileSizeSelect, {1}};
    int storage = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CallRoutine(routine, &params, &storage));
    }
}
BENCHMARK(BM_CallRoutineWithOneSlot);

void BM_CallThroughPointer(benchmark::State& state)
{
    ComponentResult (*volatile function)(void*, ComponentSlot) = AnswerSlot;
    int storage = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(function(&storage, 1));
    }
}
BENCHMARK(BM_CallThroughPointer);

} // namespace

// SPDX-License-Identifier: MIT
//
// Reading from a source in memory, beside memcpy of the same pieces.
#include "src/datasource/VornPointerDataSource.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace
{

constexpr SInt32 kSourceSize = 1 << 20;

void BM_ReadLong(benchmark::State& state)
{
    std::vector<UInt8> bytes(kSourceSize, 1);
    VornPointerDataSource source(bytes.data(), kSourceSize);
    for (auto _ : state) {
        SInt32 value = 0;
        source.ReadLong(&value, true);
        benchmark::DoNotOptimize(value);
        source.readOffset &= kSourceSize / 2 - 1;
    }
}
BENCHMARK(BM_ReadLong);

void BM_ReadBytes(benchmark::State& state)
{
    const auto count = static_cast<SInt32>(state.range());
    std::vector<UInt8> bytes(kSourceSize, 1);
    std::vector<UInt8> out(static_cast<size_t>(count));
    VornPointerDataSource source(bytes.data(), kSourceSize);
    for (auto _ : state) {
        source.ReadBytes(count, out.data(), true);
        benchmark::DoNotOptimize(out.data());
        source.readOffset &= kSourceSize / 2 - 1;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * count);
}
BENCHMARK(BM_ReadBytes)->Arg(4)->Arg(512)->Arg(16384);

void BM_MemcpyOfTheSame(benchmark::State& state)
{
    const auto count = static_cast<size_t>(state.range());
    std::vector<UInt8> bytes(kSourceSize, 1);
    std::vector<UInt8> out(count);
    size_t offset = 0;
    for (auto _ : state) {
        std::memcpy(out.data(), bytes.data() + offset, count);
        benchmark::DoNotOptimize(out.data());
        offset = (offset + count) & (kSourceSize / 2 - 1);
    }
    state.SetBytesProcessed(state.iterations() * state.range());
}
BENCHMARK(BM_MemcpyOfTheSame)->Arg(4)->Arg(512)->Arg(16384);

} // namespace

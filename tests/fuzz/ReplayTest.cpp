// SPDX-License-Identifier: MIT
//
// A fuzz target in the normal tests: its seeds and a fixed row of changed ones. With a file's name
// in VORN_FUZZ_KEEP each input is written there before it runs: the last one is that of a crash.
#include "tests/fuzz/Mutations.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace
{

void Replay(const FuzzInput& input)
{
    if (const char* const file = std::getenv("VORN_FUZZ_KEEP")) {
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(input.data()),
                   static_cast<std::streamsize>(input.size()));
    }
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

} // namespace

TEST(VORN_FUZZ_NAME, KeepsItsPromisesForSeedsAndChangedSeeds)
{
    const std::vector<FuzzInput> seeds = FuzzSeeds();
    ASSERT_FALSE(seeds.empty());
    Replay({});
    for (const FuzzInput& seed : seeds)
        Replay(seed);
    std::mt19937 random(1);
    for (int run = 0; run < VORN_FUZZ_RUNS; ++run)
        Replay(Mutated(seeds, random));
}

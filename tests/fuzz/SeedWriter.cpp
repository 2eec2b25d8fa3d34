// SPDX-License-Identifier: MIT
//
// A fuzzer that is started with VORN_FUZZ_SEEDS in its environment writes its seeds into that
// folder, and ends.
#include "tests/fuzz/FuzzTarget.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

extern "C" int LLVMFuzzerInitialize(int*, char***);

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    const char* const folder = std::getenv("VORN_FUZZ_SEEDS");
    if (folder == nullptr)
        return 0;
    int number = 0;
    for (const FuzzInput& seed : FuzzSeeds()) {
        const auto name = "seed-" + std::to_string(++number);
        std::ofstream(std::filesystem::path(folder) / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(seed.data()),
                   static_cast<std::streamsize>(seed.size()));
    }
    std::_Exit(0);
}

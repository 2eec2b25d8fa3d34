// SPDX-License-Identifier: MIT
//
// What each fuzz target supplies. A target takes any bytes as decisions, contents or both, does
// what they say and requires what must hold whatever they are.
#pragma once

#include "toolbox/Types.h"

#include <vector>

using FuzzInput = std::vector<UInt8>;

// One run; always 0. The name is libFuzzer's.
extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size);

// Inputs to start from.
std::vector<FuzzInput> FuzzSeeds();

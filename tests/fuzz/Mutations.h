// SPDX-License-Identifier: MIT
#pragma once

#include "tests/fuzz/FuzzTarget.h"

#include <random>

// A seed with a few changes of the kinds that break parsers: bits and bytes, parts lost, repeated
// or put elsewhere, parts of another seed, extreme numbers, an early end.
FuzzInput Mutated(const std::vector<FuzzInput>& seeds, std::mt19937& random);

// SPDX-License-Identifier: MIT
#include "tests/fuzz/Require.h"

#include <cstdio>
#include <cstdlib>

void Require(bool holds, const char* promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

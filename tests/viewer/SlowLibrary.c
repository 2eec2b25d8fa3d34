// SPDX-License-Identifier: MIT
//
// A library that takes its time to begin, and tells if it has to end before it has begun.
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

static volatile int gHasBegun = 0;

static void End(void)
{
    if (!gHasBegun) {
        fputs("ended before it had begun\n", stderr);
    }
}

__attribute__((constructor)) static void Begin(void)
{
    atexit(End);
    usleep(400000);
    gHasBegun = 1;
}

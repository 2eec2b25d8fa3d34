// SPDX-License-Identifier: MIT
//
// Several versions of one hot function, chosen for the processor when the program starts.
#pragma once

// Stands before a function whose plain loops the compiler turns into vector code. Sanitizers and
// coverage counters cannot run in the choosing, which comes before them; and what clang makes of
// this (14) is not found by callers in other files.
#if defined(__x86_64__) && defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__) &&              \
    !defined(__clang__)
#define VORN_CPU_VERSIONS __attribute__((target_clones("avx2", "default")))
#else
#define VORN_CPU_VERSIONS
#endif

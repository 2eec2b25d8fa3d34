// SPDX-License-Identifier: MIT
//
// Small faults to put into a source file, one at a time, so as to see whether a test notices.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// `length` bytes at `offset` of the source give way to `replacement`.
struct Mutant {
    std::size_t offset;
    std::size_t length;
    std::string replacement;
};

// All of them, in the order of their places: comparisons, arithmetic, logic and steps turned into
// their neighbours, true and false exchanged, whole numbers one more and one less, conditions
// negated; calls, assignments and scope guards left out, and neighbouring statements exchanged.
// Goes by how the text is laid out, so it takes formatted code; some mutants do not compile.
std::vector<Mutant> FindMutants(const std::string& source);

std::string WithMutant(const std::string& source, const Mutant& mutant);

// Counted from 1.
std::size_t LineOf(const std::string& source, std::size_t offset);

// What it changes and what into, on one line.
std::string Description(const std::string& source, const Mutant& mutant);

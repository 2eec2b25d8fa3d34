// SPDX-License-Identifier: MIT
#pragma once

#include "tests/fuzz/FuzzTarget.h"

#include <span>
#include <string>

// An input of an image target: how the bytes arrive and how time passes, then the file.
constexpr size_t kArrivalBytes = 4;
FuzzInput WithArrival(const std::vector<UInt8>& file, const FuzzInput& arrival);

// Decodes and displays a file with the bundle of that name, in pieces and at once: both show the
// same, and the host is told what it must be told.
void FuzzImage(const std::string& bundle, std::span<const UInt8> arrival,
               const std::vector<UInt8>& file);

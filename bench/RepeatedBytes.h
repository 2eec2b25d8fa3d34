// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <string>
#include <vector>

// An object of any length in little memory: one block over and over.
class RepeatedBytes
{
public:
    explicit RepeatedBytes(std::vector<UInt8> block) : block_(std::move(block)) {}

    void Copy(UInt8* dest, SInt64 offset, SInt32 count) const;

private:
    std::vector<UInt8> block_; // not empty
};

// A block of zeros for the name "zeros", else the contents of that file. Throws
// std::runtime_error.
RepeatedBytes LoadBytes(const std::string& name);

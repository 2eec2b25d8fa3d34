// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <cstdlib>
#include <string>

namespace test
{

// What the frames of one image may take, for the length of a scope.
class MemoryLimit
{
public:
    explicit MemoryLimit(UInt64 bytes)
    {
        setenv("VORN_IMAGE_BYTES", std::to_string(bytes).c_str(), 1);
    }
    ~MemoryLimit() { unsetenv("VORN_IMAGE_BYTES"); }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;
};

} // namespace test

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

namespace viewer
{

// Copies `count` bytes at `offset` of a file. Fewer at its end (errno is 0 then) or after a
// failure (errno tells it).
SInt32 ReadFully(int file, void* buffer, SInt32 offset, SInt32 count);

} // namespace viewer

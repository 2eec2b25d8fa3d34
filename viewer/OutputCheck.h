// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/Options.h"

namespace viewer
{

// Throws UsageError if a file that is to be written is one of the objects, or is to be written by
// two options.
void RefuseOutputsThatMeet(const Options& options);

} // namespace viewer

// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/Options.h"

namespace viewer
{

// Throws UsageError if a file that is to be written is one of the objects.
void RefuseOutputsThatAreObjects(const Options& options);

} // namespace viewer

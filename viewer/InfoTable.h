// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/Report.h"

namespace viewer
{

// What --info prints: a line for each object, in columns as wide as what stands in them.
std::string DescribeObjects(const PageReport& report);

} // namespace viewer

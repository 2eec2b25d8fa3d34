// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"

#include <string>

namespace viewer
{

// Writes the picture of a port of 32 bits a pixel as a PNG file of 24. Throws std::runtime_error
// with a text for the user, in which it is called `what`; what stood at the path is then still
// there.
void WritePng(CGrafPtr port, const std::string& path, const std::string& what = "the snapshot");

} // namespace viewer

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"

#include <string>

namespace viewer
{

// Writes a port's picture as a PNG file of 24 bits a pixel. Throws std::runtime_error with a text
// for the user; what stood at the path is then still there.
void WritePng(CGrafPtr port, const std::string& path);

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// Which port some pixels belong to.
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"

namespace toolbox
{

// False without memory.
bool RegisterPort(CGrafPort& port);
void UnregisterPort(const CGrafPort& port);
// The port whose first pixel stands at that address; null if there is none.
CGrafPort* FindPortOfPixels(const void* firstPixel);

} // namespace toolbox

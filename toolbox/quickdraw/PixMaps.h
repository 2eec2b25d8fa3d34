// SPDX-License-Identifier: MIT
//
// Making the pixels of ports.
#pragma once

#include "toolbox/quickdraw/Port.h"

namespace toolbox
{

// Gives the port, whose bounds are set, white pixels of that depth, and makes it known. The table
// becomes the port's. paramErr for rows that are too long, memFullErr.
OSErr GivePixels(CGrafPort& port, int depth, SInt32 rowAlignment, CTabHandle colors);
// Undoes that.
void TakePixels(CGrafPort& port);

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// Drags an object out of the page and drops it into files.
#pragma once

#include "viewer/Options.h"
#include "viewer/Page.h"

namespace viewer
{

// The object gives its picture as a file of the type 'PICT', and its drag image as a PNG file if
// that is asked for. Without a number it is the first one that can be dragged. False if there is
// none, or a file could not be written: the user has been told.
bool DragOut(Page& page, const DragRequest& request);

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// A page's port as a canvas, for what is drawn beside its objects.
#pragma once

#include "viewer/Page.h"
#include "viewer/text/Canvas.h"

namespace viewer
{

// For drawing within that part of the page, which then counts as changed.
Canvas CanvasOn(Page& page, const Rect& changed);

} // namespace viewer

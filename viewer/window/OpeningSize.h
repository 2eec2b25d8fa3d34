// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/Layout.h"

namespace viewer
{

// How a window shows an object that has it for itself.
struct OpeningSize {
    AreaSize window;
    double zoom = 1;
};

// A picture of that size is enlarged by a whole number until it can be looked at in comfort, and
// reduced to be seen as a whole; what may not be scaled keeps its size. The window leaves room
// for its caption and takes four fifths of the screen's width and height at most. The rows of a
// movie's controller are part of its size, and not scaled.
OpeningSize OpeningSizeFor(AreaSize natural, SInt16 rowsOfController, bool mayScale,
                           AreaSize screen, const PageStyle& style);

} // namespace viewer

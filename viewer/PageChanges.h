// SPDX-License-Identifier: MIT
//
// Where a page has changed since somebody looked.
#pragma once

#include "toolbox/Types.h"

#include <vector>

namespace viewer
{

class PageChanges
{
public:
    void Add(const Rect& rect);
    // Rectangles that together hold all changes, and may overlap. Forgets them.
    std::vector<Rect> Take();

private:
    std::vector<Rect> rects_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// The rectangles of a target that may be drawn to.
#pragma once

#include "toolbox/quickdraw/Region.h"

#include <algorithm>

namespace toolbox
{

inline Rect Intersection(const Rect& a, const Rect& b)
{
    return {std::max(a.top, b.top), std::max(a.left, b.left), std::min(a.bottom, b.bottom),
            std::min(a.right, b.right)};
}

inline bool IsOneRect(const pixman_region32_t& area)
{
    return area.data == nullptr;
}

// Calls draw(const Rect&) for each rectangle of `box` that lies in both regions (null: no limit).
// Nothing is allocated where the regions are rectangles.
template <typename Draw>
void ForEachVisibleRect(Rect box, const MacRegion* first, const MacRegion* second, Draw draw)
{
    for (const MacRegion** region : {&first, &second}) {
        if (*region != nullptr && IsOneRect((*region)->area)) {
            box = Intersection(box, RectFromBox((*region)->area.extents));
            *region = nullptr;
        }
    }
    if (IsEmptyRect(box)) {
        return;
    }
    if (first == nullptr && second == nullptr) {
        draw(box);
        return;
    }
    MacRegion visible;
    SetArea(visible.area, box);
    for (const MacRegion* region : {first, second}) {
        if (region != nullptr) {
            pixman_region32_intersect(
                &visible.area, &visible.area,
                const_cast<pixman_region32_t*>(&region->area)); // it is only read
        }
    }
    int count = 0;
    const pixman_box32_t* const boxes = pixman_region32_rectangles(&visible.area, &count);
    for (int i = 0; i < count; ++i) {
        draw(RectFromBox(boxes[i]));
    }
}

} // namespace toolbox

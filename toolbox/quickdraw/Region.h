// SPDX-License-Identifier: MIT
//
// What stands behind a region handle.
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"

#include <pixman.h>

// A set of pixels. Not copied by assignment: see toolbox::CopyRegion.
struct MacRegion {
    pixman_region32_t area;

    MacRegion() { pixman_region32_init(&area); }
    ~MacRegion() { pixman_region32_fini(&area); }
    MacRegion(const MacRegion&) = delete;
    MacRegion& operator=(const MacRegion&) = delete;
};

namespace toolbox
{

// The widest rectangle that 16-bit coordinates can name.
inline constexpr Rect kWidestRect = {-32768, -32768, 32767, 32767};

inline bool IsEmptyRect(const Rect& rect)
{
    return rect.right <= rect.left || rect.bottom <= rect.top;
}
// Makes the area one rectangle, an empty one for an empty rectangle.
void SetArea(pixman_region32_t& area, const Rect& rect);
Rect RectFromBox(const pixman_box32_t& box);

} // namespace toolbox

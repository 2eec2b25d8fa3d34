// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <algorithm>

namespace viewer
{

inline bool IsEmpty(const Rect& rect)
{
    return rect.bottom <= rect.top || rect.right <= rect.left;
}

// Empty where they do not meet.
inline Rect Intersection(const Rect& a, const Rect& b)
{
    return {std::max(a.top, b.top), std::max(a.left, b.left), std::min(a.bottom, b.bottom),
            std::min(a.right, b.right)};
}

// The smallest rectangle that holds both.
inline Rect Union(const Rect& a, const Rect& b)
{
    return {std::min(a.top, b.top), std::min(a.left, b.left), std::max(a.bottom, b.bottom),
            std::max(a.right, b.right)};
}

inline bool Contains(const Rect& outer, const Rect& inner)
{
    return outer.top <= inner.top && outer.left <= inner.left && outer.bottom >= inner.bottom &&
           outer.right >= inner.right;
}

inline bool Contains(const Rect& rect, Point place)
{
    return place.v >= rect.top && place.v < rect.bottom && place.h >= rect.left &&
           place.h < rect.right;
}

} // namespace viewer

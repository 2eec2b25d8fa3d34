// SPDX-License-Identifier: MIT
//
// Sets of pixels, for machines that have no pixman: bands from top to bottom, in each the boxes
// from left to right, no two of which touch; a band never continues one just above it that looks
// the same. So equal sets have equal boxes, and they are those that pixman makes.
#pragma once

#include <cstdint>
#include <vector>

namespace standins
{

struct Box {
    int32_t x1, y1, x2, y2; // the second corner lies outside

    bool operator==(const Box&) const = default;
};

using Area = std::vector<Box>;

Area Union(const Area& a, const Area& b);
Area Intersection(const Area& a, const Area& b);
// The smallest box around all of it; all zeros around nothing.
Box Extents(const Area& area);

} // namespace standins

// SPDX-License-Identifier: MIT
#include "toolbox/standins/Area.h"

#include <algorithm>
#include <utility>

namespace standins
{
namespace
{

using Cuts = std::vector<int32_t>; // ascending, each once
using Combine = bool (*)(bool inFirst, bool inSecond);

void SortOnce(Cuts& cuts)
{
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
}

Cuts RowCuts(const Area& a, const Area& b)
{
    Cuts cuts;
    for (const Area* area : {&a, &b}) {
        for (const Box& box : *area) {
            cuts.push_back(box.y1);
            cuts.push_back(box.y2);
        }
    }
    SortOnce(cuts);
    return cuts;
}

// What an area has of a row that no box begins or ends in the middle of.
Area BoxesInRow(const Area& area, int32_t y)
{
    Area boxes;
    std::copy_if(area.begin(), area.end(), std::back_inserter(boxes),
                 [y](const Box& box) { return box.y1 <= y && y < box.y2; });
    return boxes;
}

bool Holds(const Area& row, int32_t x)
{
    return std::any_of(row.begin(), row.end(),
                       [x](const Box& box) { return box.x1 <= x && x < box.x2; });
}

Area CombineBand(const Area& a, const Area& b, int32_t y1, int32_t y2, Combine combine)
{
    Cuts cuts;
    for (const Area* row : {&a, &b}) {
        for (const Box& box : *row) {
            cuts.push_back(box.x1);
            cuts.push_back(box.x2);
        }
    }
    SortOnce(cuts);
    Area band;
    for (size_t i = 0; i + 1 < cuts.size(); ++i) {
        if (!combine(Holds(a, cuts[i]), Holds(b, cuts[i]))) {
            continue;
        }
        if (!band.empty() && band.back().x2 == cuts[i]) {
            band.back().x2 = cuts[i + 1];
        } else {
            band.push_back({cuts[i], y1, cuts[i + 1], y2});
        }
    }
    return band;
}

bool Continues(const Area& above, const Area& band)
{
    return std::equal(above.begin(), above.end(), band.begin(), band.end(),
                      [](const Box& upper, const Box& lower) {
                          return upper.y2 == lower.y1 && upper.x1 == lower.x1 &&
                                 upper.x2 == lower.x2;
                      });
}

Area CombineAreas(const Area& a, const Area& b, Combine combine)
{
    const Cuts cuts = RowCuts(a, b);
    Area finished;
    Area above;
    for (size_t i = 0; i + 1 < cuts.size(); ++i) {
        Area band = CombineBand(BoxesInRow(a, cuts[i]), BoxesInRow(b, cuts[i]), cuts[i],
                                cuts[i + 1], combine);
        if (Continues(above, band)) {
            for (Box& box : above) {
                box.y2 = cuts[i + 1];
            }
            continue;
        }
        finished.insert(finished.end(), above.begin(), above.end());
        above = std::move(band);
    }
    finished.insert(finished.end(), above.begin(), above.end());
    return finished;
}

} // namespace

Area Union(const Area& a, const Area& b)
{
    return CombineAreas(a, b, [](bool inFirst, bool inSecond) { return inFirst || inSecond; });
}

Area Intersection(const Area& a, const Area& b)
{
    return CombineAreas(a, b, [](bool inFirst, bool inSecond) { return inFirst && inSecond; });
}

Box Extents(const Area& area)
{
    if (area.empty()) {
        return {};
    }
    Box extents = area.front();
    for (const Box& box : area) {
        extents = {std::min(extents.x1, box.x1), std::min(extents.y1, box.y1),
                   std::max(extents.x2, box.x2), std::max(extents.y2, box.y2)};
    }
    return extents;
}

} // namespace standins

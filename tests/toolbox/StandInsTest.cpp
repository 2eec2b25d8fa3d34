// SPDX-License-Identifier: MIT
//
// What stands in for pixman's regions on machines that have no pixman, beside pixman.
#include "toolbox/standins/Area.h"

#include <gtest/gtest.h>

#include <pixman.h>
#include <random>

namespace
{

using standins::Area;
using standins::Box;

class Region
{
public:
    Region() { pixman_region32_init(&region); }
    ~Region() { pixman_region32_fini(&region); }
    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;

    Area Boxes()
    {
        int count = 0;
        const pixman_box32_t* const boxes = pixman_region32_rectangles(&region, &count);
        Area area;
        for (int i = 0; i < count; ++i) {
            area.push_back({boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2});
        }
        return area;
    }
    Box Extents()
    {
        const pixman_box32_t* const box = pixman_region32_extents(&region);
        return {box->x1, box->y1, box->x2, box->y2};
    }

    pixman_region32_t region{};
};

// The same random boxes to both; small coordinates, so that edges often meet.
void AddBoxes(std::mt19937& random, Region& region, Area& area)
{
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    for (int boxes = upTo(6); boxes > 0; --boxes) {
        const int x = upTo(12) - 6;
        const int y = upTo(12) - 6;
        const int width = 1 + upTo(5);
        const int height = 1 + upTo(5);
        pixman_region32_union_rect(&region.region, &region.region, x, y,
                                   static_cast<unsigned>(width), static_cast<unsigned>(height));
        area = standins::Union(area, {{x, y, x + width, y + height}});
    }
}

TEST(StandInAreas, HaveTheBoxesOfRegions)
{
    std::mt19937 random(20030601);
    for (int round = 0; round < 2000; ++round) {
        Region region;
        Area area;
        AddBoxes(random, region, area);
        ASSERT_EQ(region.Boxes(), area) << "round " << round;
        ASSERT_EQ(region.Extents(), standins::Extents(area)) << "round " << round;
    }
}

TEST(StandInAreas, IntersectAsRegionsDo)
{
    std::mt19937 random(20030601);
    for (int round = 0; round < 2000; ++round) {
        Region first;
        Region second;
        Area firstArea;
        Area secondArea;
        AddBoxes(random, first, firstArea);
        AddBoxes(random, second, secondArea);
        pixman_region32_intersect(&first.region, &first.region, &second.region);
        ASSERT_EQ(first.Boxes(), standins::Intersection(firstArea, secondArea))
            << "round " << round;
    }
}

} // namespace

// SPDX-License-Identifier: MIT
//
// As much of pixman's regions as the toolbox calls, under pixman's names, for machines whose system
// has no pixman (VORN_LIBRARIES=OFF).
#pragma once

#include "toolbox/standins/Area.h"

#include <utility>

using pixman_box32_t = standins::Box;

struct pixman_region32_t {
    pixman_box32_t extents;
    standins::Area* data; // null: the extents are all of it
};

inline void pixman_region32_init(pixman_region32_t* region)
{
    *region = {{}, new standins::Area};
}

inline void pixman_region32_fini(pixman_region32_t* region)
{
    delete region->data;
}

inline standins::Area AreaOf(const pixman_region32_t* region)
{
    return region->data != nullptr ? *region->data : standins::Area{region->extents};
}

inline void SetAreaOf(pixman_region32_t* region, standins::Area area)
{
    standins::Area* const data = area.size() == 1 ? nullptr : new standins::Area(std::move(area));
    delete std::exchange(region->data, data);
    region->extents = data != nullptr ? standins::Extents(*data) : area.front();
}

inline void pixman_region32_init_rect(pixman_region32_t* region, int x, int y, unsigned width,
                                      unsigned height)
{
    *region = {{x, y, x + static_cast<int>(width), y + static_cast<int>(height)}, nullptr};
}

inline int pixman_region32_init_rects(pixman_region32_t* region, const pixman_box32_t* boxes,
                                      int count)
{
    standins::Area area;
    for (int i = 0; i < count; ++i) {
        area = standins::Union(area, {boxes[i]});
    }
    pixman_region32_init(region);
    SetAreaOf(region, std::move(area));
    return 1;
}

inline int pixman_region32_copy(pixman_region32_t* to, const pixman_region32_t* from)
{
    SetAreaOf(to, AreaOf(from));
    return 1;
}

inline int pixman_region32_intersect(pixman_region32_t* to, const pixman_region32_t* a,
                                     const pixman_region32_t* b)
{
    SetAreaOf(to, standins::Intersection(AreaOf(a), AreaOf(b)));
    return 1;
}

inline int pixman_region32_union(pixman_region32_t* to, const pixman_region32_t* a,
                                 const pixman_region32_t* b)
{
    SetAreaOf(to, standins::Union(AreaOf(a), AreaOf(b)));
    return 1;
}

inline int pixman_region32_union_rect(pixman_region32_t* to, const pixman_region32_t* from, int x,
                                      int y, unsigned width, unsigned height)
{
    pixman_region32_t box;
    pixman_region32_init_rect(&box, x, y, width, height);
    return pixman_region32_union(to, from, &box);
}

inline int pixman_region32_equal(const pixman_region32_t* a, const pixman_region32_t* b)
{
    return AreaOf(a) == AreaOf(b) ? 1 : 0;
}

inline int pixman_region32_n_rects(const pixman_region32_t* region)
{
    return region->data != nullptr ? static_cast<int>(region->data->size()) : 1;
}

inline int pixman_region32_not_empty(const pixman_region32_t* region)
{
    return pixman_region32_n_rects(region) > 0 ? 1 : 0;
}

inline const pixman_box32_t* pixman_region32_extents(const pixman_region32_t* region)
{
    return &region->extents;
}

inline pixman_box32_t* pixman_region32_rectangles(pixman_region32_t* region, int* count)
{
    *count = pixman_region32_n_rects(region);
    return region->data != nullptr ? region->data->data() : &region->extents;
}

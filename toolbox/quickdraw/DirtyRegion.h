// SPDX-License-Identifier: MIT
//
// What was drawn to since somebody last looked.
#pragma once

#include "toolbox/quickdraw/Region.h"

#include <array>

namespace toolbox
{

// Gathers rectangles and makes a region of them when there are many or when it is asked: a page
// of a thousand small images would otherwise build a larger and larger region a thousand times.
class DirtyRegion
{
public:
    void Add(const Rect& rect);
    // Moves everything into `region`, if that is not null. True if there was anything.
    bool Take(pixman_region32_t* region);

private:
    void Gather();

    static constexpr int kMaxPending = 256;
    std::array<pixman_box32_t, kMaxPending> pending_;
    int pendingCount_ = 0;
    MacRegion gathered_;
};

} // namespace toolbox

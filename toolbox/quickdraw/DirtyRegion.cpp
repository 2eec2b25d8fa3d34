// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/DirtyRegion.h"

namespace toolbox
{
namespace
{

bool Contains(const pixman_box32_t& outer, const pixman_box32_t& inner)
{
    return outer.x1 <= inner.x1 && outer.y1 <= inner.y1 && outer.x2 >= inner.x2 &&
           outer.y2 >= inner.y2;
}

} // namespace

void DirtyRegion::Add(const Rect& rect)
{
    if (IsEmptyRect(rect)) {
        return;
    }
    const pixman_box32_t box = {rect.left, rect.top, rect.right, rect.bottom};
    if (pendingCount_ > 0 && Contains(pending_[static_cast<size_t>(pendingCount_ - 1)], box)) {
        return;
    }
    if (pendingCount_ == kMaxPending) {
        Gather();
    }
    pending_[static_cast<size_t>(pendingCount_++)] = box;
}

bool DirtyRegion::Take(pixman_region32_t* region)
{
    Gather();
    if (region != nullptr) {
        pixman_region32_copy(region, &gathered_.area);
    }
    const bool anything = pixman_region32_not_empty(&gathered_.area) != 0;
    SetArea(gathered_.area, {});
    return anything;
}

void DirtyRegion::Gather()
{
    if (pendingCount_ == 0) {
        return;
    }
    MacRegion added;
    pixman_region32_fini(&added.area);
    pixman_region32_init_rects(&added.area, pending_.data(), pendingCount_);
    pixman_region32_union(&gathered_.area, &gathered_.area, &added.area);
    pendingCount_ = 0;
}

} // namespace toolbox

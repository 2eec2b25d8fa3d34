// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Region.h"

#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/Drawing.h"

#include <memory>
#include <new>

namespace toolbox
{
namespace
{

SInt16 WrapSum(SInt16 a, SInt16 b)
{
    return static_cast<SInt16>(
        static_cast<UInt16>(static_cast<UInt16>(a) + static_cast<UInt16>(b)));
}

// One direction of MapRect. Rounds to the nearest; halves away from the edge that is mapped.
struct Mapping {
    SInt16 from;
    SInt16 fromEnd;
    SInt16 to;
    SInt16 toEnd;

    SInt16 Map(SInt16 coordinate) const
    {
        const SInt64 fromSize = SInt64{fromEnd} - from;
        const SInt64 toSize = SInt64{toEnd} - to;
        const SInt64 distance = SInt64{coordinate} - from;
        if (fromSize == 0 || fromSize == toSize) {
            return static_cast<SInt16>(to + distance); // only moved
        }
        const SInt64 product = distance * toSize;
        const SInt64 half = (product < 0) == (fromSize < 0) ? fromSize / 2 : -(fromSize / 2);
        return static_cast<SInt16>(to + (product + half) / fromSize);
    }
};

RgnHandle MakeRegion()
{
    std::unique_ptr<MacRegion> region(new (std::nothrow) MacRegion);
    auto* handle = new (std::nothrow) MacRegion*(region.get());
    if (region == nullptr || handle == nullptr) {
        delete handle;
        return nullptr;
    }
    static_cast<void>(region.release()); // now the handle's
    CountInLedger(kLiveRegions, 1);
    return handle;
}

} // namespace

void SetArea(pixman_region32_t& area, const Rect& rect)
{
    pixman_region32_fini(&area);
    if (IsEmptyRect(rect)) {
        pixman_region32_init(&area);
        return;
    }
    pixman_region32_init_rect(&area, rect.left, rect.top,
                              static_cast<unsigned>(rect.right - rect.left),
                              static_cast<unsigned>(rect.bottom - rect.top));
}

Rect RectFromBox(const pixman_box32_t& box)
{
    return {static_cast<SInt16>(box.y1), static_cast<SInt16>(box.x1), static_cast<SInt16>(box.y2),
            static_cast<SInt16>(box.x2)};
}

RgnHandle CopyRegion(RgnHandle region)
{
    RgnHandle const copy = region == nullptr ? nullptr : MakeRegion();
    if (copy != nullptr) {
        pixman_region32_copy(&(*copy)->area, &(*region)->area);
    }
    return copy;
}

} // namespace toolbox

using toolbox::Announce;

void OffsetRect(Rect* rect, SInt16 dh, SInt16 dv)
{
    Announce("OffsetRect");
    *rect = {toolbox::WrapSum(rect->top, dv), toolbox::WrapSum(rect->left, dh),
             toolbox::WrapSum(rect->bottom, dv), toolbox::WrapSum(rect->right, dh)};
}

Boolean EqualRect(const Rect* a, const Rect* b)
{
    Announce("EqualRect");
    return a->top == b->top && a->left == b->left && a->bottom == b->bottom && a->right == b->right;
}

void MapRect(Rect* rect, const Rect* from, const Rect* to)
{
    Announce("MapRect");
    const toolbox::Mapping rows = {from->top, from->bottom, to->top, to->bottom};
    const toolbox::Mapping columns = {from->left, from->right, to->left, to->right};
    *rect = {rows.Map(rect->top), columns.Map(rect->left), rows.Map(rect->bottom),
             columns.Map(rect->right)};
}

RgnHandle NewRgn()
{
    return Announce("NewRgn") != 0 ? nullptr : toolbox::MakeRegion();
}

void DisposeRgn(RgnHandle region)
{
    Announce("DisposeRgn");
    if (region == nullptr) {
        return;
    }
    delete *region;
    delete region;
    toolbox::CountInLedger(kLiveRegions, -1);
}

void RectRgn(RgnHandle region, const Rect* rect)
{
    if (Announce("RectRgn") == 0) {
        toolbox::SetArea((*region)->area, *rect);
    }
}

SInt32 CountRegionRects(RgnHandle region)
{
    Announce("CountRegionRects");
    return pixman_region32_n_rects(&(*region)->area);
}

Rect GetRegionRect(RgnHandle region, SInt32 index)
{
    Announce("GetRegionRect");
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(&(*region)->area, &count);
    return index >= 0 && index < count ? toolbox::RectFromBox(boxes[index]) : Rect{};
}

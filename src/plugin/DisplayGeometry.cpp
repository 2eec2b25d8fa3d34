// SPDX-License-Identifier: MIT
//
// How an object's natural rectangle is placed in the area the host gives it.
#include "src/plugin/VornPlugin.h"
#include "toolbox/quickdraw/QuickDraw.h"

namespace
{

// One side of a rectangle: [start, end).
struct Span {
    SInt32 start;
    SInt32 end;
    SInt32 Length() const { return end - start; }
};

Span Across(const Rect& rect)
{
    return {rect.left, rect.right};
}

Span Down(const Rect& rect)
{
    return {rect.top, rect.bottom};
}

// Halving from the far end on leaves an odd pixel at the near one.
SInt16 OffsetToCenter(Span bounds, Span span)
{
    return static_cast<SInt16>((bounds.end - span.end) - (bounds.Length() - span.Length()) / 2);
}

SInt16 OffsetToPlace(Span bounds, Span span, bool center, bool alignFarEnd)
{
    if (center)
        return OffsetToCenter(bounds, span);
    return static_cast<SInt16>(alignFarEnd ? bounds.end - span.end : bounds.start - span.start);
}

// The far end of a side after scaling; a fraction of a pixel is dropped.
SInt16 ScaledEnd(Span span, float scale)
{
    const float length = scale * static_cast<float>(span.Length());
    return static_cast<SInt16>(span.start + static_cast<SInt64>(length));
}

} // namespace

void VornPlugin::ScaleRectWithFlags(UInt32 flags, const Rect& natural, const Rect& bounds,
                                    Rect& outRect)
{
    Rect r = natural;
    if ((flags & kVornDisplayScale) && (flags & kVornDisplayKeepAspect))
        ScaleRectToFit(bounds, r, (flags & kVornDisplayShrinkOnly) != 0);
    else if (flags & kVornDisplayScale)
        r = bounds;
    OffsetRect(&r,
               OffsetToPlace(Across(bounds), Across(r), flags & kVornDisplayCenterH,
                             flags & kVornDisplayAlignRight),
               OffsetToPlace(Down(bounds), Down(r), flags & kVornDisplayCenterV,
                             flags & kVornDisplayAlignBottom));
    outRect = r;
}

void VornPlugin::ScaleRectToFit(const Rect& bounds, Rect& rect, unsigned char shrinkOnly)
{
    const Span width = Across(rect);
    const Span height = Down(rect);
    if (width.Length() == 0 || height.Length() == 0)
        return;
    const float vScale =
        static_cast<float>(Down(bounds).Length()) / static_cast<float>(height.Length());
    const float hScale =
        static_cast<float>(Across(bounds).Length()) / static_cast<float>(width.Length());
    const float scale = hScale >= vScale ? vScale : hScale;
    if (shrinkOnly && scale > 1.0F)
        return;
    rect.bottom = ScaledEnd(height, scale);
    rect.right = ScaledEnd(width, scale);
}

void VornPlugin::CenterRect(const Rect& bounds, Rect& rect)
{
    OffsetRect(&rect, OffsetToCenter(Across(bounds), Across(rect)),
               OffsetToCenter(Down(bounds), Down(rect)));
}

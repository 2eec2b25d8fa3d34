// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Drawing.h"

#include "toolbox/quickdraw/Clipping.h"
#include "toolbox/quickdraw/Colors.h"
#include "toolbox/quickdraw/PixelSpans.h"
#include "toolbox/quickdraw/Port.h"
#include "toolbox/quickdraw/RowCopy.h"

namespace toolbox
{
namespace
{

// The first of the rows is made pixel by pixel; it is the pattern of the others.
void FillRect(const CGrafPort& port, const Rect& rect, UInt32 pixel)
{
    const PixelView view = ViewOf(port.pixMap.map);
    const int column = view.Column(rect.left);
    const int width = rect.right - rect.left;
    UInt8* const firstRow = view.Row(rect.top);
    FillSpan(firstRow, view.depth, column, width, pixel);
    for (int v = rect.top + 1; v < rect.bottom; ++v) {
        CopyRow(firstRow, column, view.Row(v), column, view.depth, width);
    }
}

} // namespace

std::vector<Rect> VisibleRects(const CGrafPort& port, const Rect& rect, RgnHandle clip)
{
    std::vector<Rect> rects;
    ForEachVisibleRect(Intersection(rect, port.bounds), &port.clip,
                       clip == nullptr ? nullptr : *clip,
                       [&](const Rect& part) { rects.push_back(part); });
    return rects;
}

void PaintRect(CGrafPort& port, const Rect& rect, const RGBColor& color, RgnHandle clip)
{
    const PixMap& map = port.pixMap.map;
    const UInt32 pixel = PixelValueOf(color, map.pixelSize, map.pmTable);
    ForEachVisibleRect(Intersection(rect, port.bounds), &port.clip,
                       clip == nullptr ? nullptr : *clip, [&](const Rect& part) {
                           FillRect(port, part, pixel);
                           AddToDirtyRegion(port, part);
                       });
}

void AddToDirtyRegion(CGrafPort& port, const Rect& rect)
{
    if (port.isWindow) { // nobody presents the others
        port.dirty.Add(Intersection(rect, port.bounds));
    }
}

UInt8* PixelAddress(const CGrafPort& port, SInt16 v, SInt16 h)
{
    const ptrdiff_t row = static_cast<ptrdiff_t>(v) - port.bounds.top;
    const ptrdiff_t column = static_cast<ptrdiff_t>(h) - port.bounds.left;
    return port.pixels.Bytes() + row * port.rowBytes + column * port.pixMap.map.pixelSize / 8;
}

} // namespace toolbox

// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Drawing.h"

#include "toolbox/quickdraw/Port.h"

#include <array>
#include <cstring>

namespace toolbox
{
namespace
{

using Pixel = std::array<UInt8, 4>; // x, R, G, B

Pixel PixelFromColor(const RGBColor& color)
{
    return {0, static_cast<UInt8>(color.red >> 8), static_cast<UInt8>(color.green >> 8),
            static_cast<UInt8>(color.blue >> 8)};
}

void FillRect(const CGrafPort& port, const Rect& rect, const Pixel& pixel)
{
    UInt8* const firstRow = PixelAddress(port, rect.top, rect.left);
    const auto width = static_cast<size_t>(rect.right - rect.left);
    for (size_t i = 0; i < width; ++i) {
        std::memcpy(firstRow + i * pixel.size(), pixel.data(), pixel.size());
    }
    UInt8* row = firstRow;
    for (int v = rect.top + 1; v < rect.bottom; ++v) {
        row += port.rowBytes;
        std::memcpy(row, firstRow, width * pixel.size());
    }
}

} // namespace

std::vector<Rect> VisibleRects(const CGrafPort& port, const Rect& rect, RgnHandle clip)
{
    MacRegion visible;
    MacRegion bounds;
    SetArea(visible.area, rect);
    SetArea(bounds.area, port.bounds);
    pixman_region32_intersect(&visible.area, &visible.area, &bounds.area);
    pixman_region32_intersect(&visible.area, &visible.area, &port.clip.area);
    if (clip != nullptr) {
        pixman_region32_intersect(&visible.area, &visible.area, &(*clip)->area);
    }
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(&visible.area, &count);
    std::vector<Rect> rects;
    rects.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        rects.push_back(RectFromBox(boxes[i]));
    }
    return rects;
}

void PaintRect(CGrafPort& port, const Rect& rect, const RGBColor& color, RgnHandle clip)
{
    const Pixel pixel = PixelFromColor(color);
    for (const Rect& part : VisibleRects(port, rect, clip)) {
        FillRect(port, part, pixel);
        AddToDirtyRegion(port, part);
    }
}

void AddToDirtyRegion(CGrafPort& port, const Rect& rect)
{
    MacRegion added;
    MacRegion bounds;
    SetArea(added.area, rect);
    SetArea(bounds.area, port.bounds);
    pixman_region32_intersect(&added.area, &added.area, &bounds.area);
    pixman_region32_union(&port.dirty.area, &port.dirty.area, &added.area);
}

UInt8* PixelAddress(const CGrafPort& port, SInt16 v, SInt16 h)
{
    const ptrdiff_t row = static_cast<ptrdiff_t>(v) - port.bounds.top;
    const ptrdiff_t column = static_cast<ptrdiff_t>(h) - port.bounds.left;
    return port.pixels.get() + row * port.rowBytes + column * 4;
}

} // namespace toolbox

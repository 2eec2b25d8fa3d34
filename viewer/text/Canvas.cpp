// SPDX-License-Identifier: MIT
#include "viewer/text/Canvas.h"

#include "viewer/Rects.h"

namespace viewer
{
namespace
{

constexpr SInt32 kBytesPerPixel = 4;
constexpr UInt32 kOpaque = 255;

UInt8* PixelAt(const Canvas& canvas, SInt32 h, SInt32 v)
{
    return canvas.pixels + ptrdiff_t{v} * canvas.rowBytes + ptrdiff_t{h} * kBytesPerPixel;
}

UInt8 Mixed(UInt8 below, UInt8 above, UInt32 coverage)
{
    return static_cast<UInt8>((below * (kOpaque - coverage) + above * coverage + kOpaque / 2) /
                              kOpaque);
}

} // namespace

void Canvas::Fill(const Rect& rect, Ink ink)
{
    const Rect visible = Intersection(rect, clip);
    for (SInt32 v = visible.top; v < visible.bottom; ++v) {
        UInt8* pixel = PixelAt(*this, visible.left, v);
        for (SInt32 h = visible.left; h < visible.right; ++h, pixel += kBytesPerPixel) {
            pixel[1] = ink.red;
            pixel[2] = ink.green;
            pixel[3] = ink.blue;
        }
    }
}

void Canvas::Frame(const Rect& rect, SInt16 width, Ink ink)
{
    const auto innerTop = static_cast<SInt16>(rect.top + width);
    const auto innerBottom = static_cast<SInt16>(rect.bottom - width);
    Fill({rect.top, rect.left, innerTop, rect.right}, ink);
    Fill({innerBottom, rect.left, rect.bottom, rect.right}, ink);
    Fill({innerTop, rect.left, innerBottom, static_cast<SInt16>(rect.left + width)}, ink);
    Fill({innerTop, static_cast<SInt16>(rect.right - width), innerBottom, rect.right}, ink);
}

void Canvas::Blend(SInt32 h, SInt32 v, Ink ink, UInt8 coverage)
{
    if (h < clip.left || h >= clip.right || v < clip.top || v >= clip.bottom || coverage == 0) {
        return;
    }
    UInt8* const pixel = PixelAt(*this, h, v);
    pixel[1] = Mixed(pixel[1], ink.red, coverage);
    pixel[2] = Mixed(pixel[2], ink.green, coverage);
    pixel[3] = Mixed(pixel[3], ink.blue, coverage);
}

} // namespace viewer

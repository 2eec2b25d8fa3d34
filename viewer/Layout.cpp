// SPDX-License-Identifier: MIT
#include "viewer/Layout.h"

#include "src/plugin/VornPluginABI.h"

#include <algorithm>
#include <cmath>

namespace viewer
{
namespace
{

SInt16 ToCoordinate(SInt32 value)
{
    return static_cast<SInt16>(std::clamp<SInt32>(value, INT16_MIN, INT16_MAX));
}

} // namespace

std::vector<Rect> LayOutRows(const std::vector<AreaSize>& areas, SInt16 pageWidth,
                             const PageStyle& style)
{
    std::vector<Rect> rects;
    SInt32 left = style.margin;
    SInt32 top = style.margin;
    SInt32 rowHeight = 0;
    for (const AreaSize& area : areas) {
        const SInt32 width = std::max(area.width, style.leastWidth);
        if (left > style.margin && left + width > pageWidth - style.margin) {
            left = style.margin;
            top = std::min<SInt32>(top + rowHeight + style.captionHeight + style.gap, INT16_MAX);
            rowHeight = 0;
        }
        rects.push_back({ToCoordinate(top), ToCoordinate(left), ToCoordinate(top + area.height),
                         ToCoordinate(left + area.width)});
        left += width + style.gap;
        rowHeight = std::max<SInt32>(rowHeight, area.height);
    }
    return rects;
}

AreaSize AreaForPicture(AreaSize natural, UInt32 displayFlags, SInt16 pageWidth)
{
    if (natural.width <= pageWidth || (displayFlags & kVornDisplayScale) == 0) {
        return natural;
    }
    if ((displayFlags & kVornDisplayKeepAspect) == 0) {
        return {pageWidth, natural.height};
    }
    // A picture of one row stays one.
    return {pageWidth, ToCoordinate(std::max(natural.height * pageWidth / natural.width, 1))};
}

AreaSize Zoomed(AreaSize natural, double zoom)
{
    const auto zoomed = [zoom](SInt16 length) {
        return static_cast<SInt16>(std::clamp(std::round(length * zoom), 1.0, 32767.0));
    };
    return {zoomed(natural.width), zoomed(natural.height)};
}

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/Layout.h"

#include "src/plugin/VornPluginABI.h"

#include <algorithm>

namespace viewer
{
namespace
{

SInt16 ToCoordinate(SInt32 value)
{
    return static_cast<SInt16>(std::clamp<SInt32>(value, INT16_MIN, INT16_MAX));
}

} // namespace

std::vector<Rect> LayOutRows(const std::vector<AreaSize>& areas, SInt16 pageWidth)
{
    std::vector<Rect> rects;
    SInt32 left = 0;
    SInt32 top = 0;
    SInt32 rowHeight = 0;
    for (const AreaSize& area : areas) {
        if (left > 0 && left + area.width > pageWidth) {
            left = 0;
            top = std::min<SInt32>(top + rowHeight + kObjectGap, INT16_MAX);
            rowHeight = 0;
        }
        rects.push_back({ToCoordinate(top), ToCoordinate(left), ToCoordinate(top + area.height),
                         ToCoordinate(left + area.width)});
        left += area.width + kObjectGap;
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
    return {pageWidth, ToCoordinate(natural.height * pageWidth / natural.width)};
}

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PixelView.h"

#include "toolbox/quickdraw/Region.h"

namespace toolbox
{
namespace
{

PixelView Checked(Ptr base, SInt32 rowBytes, const Rect& bounds, int depth, CTabHandle colors)
{
    const bool isDrawable = IsPixelDepth(depth) && base != nullptr && !IsEmptyRect(bounds);
    return {reinterpret_cast<UInt8*>(base), rowBytes, bounds, isDrawable ? depth : 0, colors};
}

} // namespace

bool IsPixelDepth(int depth)
{
    return depth > 0 && depth <= 32 && (depth & (depth - 1)) == 0; // a power of two
}

SInt32 RowBytesOf(const PixMap& map)
{
    const SInt32 inRecord = map.rowBytes & kMostRowBytesInRecord;
    const bool isWide = map.packSize > kMostRowBytesInRecord && map.packSize <= kMostRowBytes &&
                        (map.packSize & kMostRowBytesInRecord) == inRecord;
    return isWide ? map.packSize : inRecord;
}

PixelView ViewOf(const PixMap& map)
{
    return Checked(map.baseAddr, RowBytesOf(map), map.bounds, map.pixelSize, map.pmTable);
}

PixelView ViewOf(const BitMap& map)
{
    if (map.rowBytes < 0) {
        return ViewOf(reinterpret_cast<const PixMap&>(map));
    }
    return Checked(map.baseAddr, map.rowBytes & kMostRowBytesInRecord, map.bounds, 1, nullptr);
}

} // namespace toolbox

// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PixelView.h"

#include "toolbox/quickdraw/Region.h"

namespace toolbox
{
namespace
{

PixelView Checked(PixelView view)
{
    if (!IsPixelDepth(view.depth) || view.base == nullptr || IsEmptyRect(view.bounds)) {
        view.depth = 0;
    }
    return view;
}

} // namespace

bool IsPixelDepth(int depth)
{
    return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16 || depth == 32;
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
    return Checked({reinterpret_cast<UInt8*>(map.baseAddr), RowBytesOf(map), map.bounds,
                    map.pixelSize, map.pmTable});
}

PixelView ViewOf(const BitMap& map)
{
    if (map.rowBytes < 0) {
        return ViewOf(reinterpret_cast<const PixMap&>(map));
    }
    return Checked({reinterpret_cast<UInt8*>(map.baseAddr), map.rowBytes & kMostRowBytesInRecord,
                    map.bounds, 1, nullptr});
}

} // namespace toolbox

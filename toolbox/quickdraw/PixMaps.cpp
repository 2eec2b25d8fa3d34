// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PixMaps.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/quickdraw/Colors.h"
#include "toolbox/quickdraw/PortRegistry.h"

#include <cstring>

namespace toolbox
{
namespace
{

constexpr Fixed k72 = 72 << 16;
constexpr SInt16 kPixMapFlag = INT16_MIN;
constexpr SInt16 kRGBDirect = 16;
constexpr size_t kSparePixel = 4;

// Rows of full length if the alignment would make them too long; 0 if they are too long anyway.
SInt32 RowBytesFor(SInt32 width, int depth, SInt32 alignment)
{
    const SInt32 bytes = (width * depth + 7) / 8;
    const SInt32 aligned = (bytes + alignment - 1) / alignment * alignment;
    if (aligned <= kMostRowBytes) {
        return aligned;
    }
    return bytes <= kMostRowBytes ? bytes : 0;
}

void FillWhite(CGrafPort& port, int depth, CTabHandle colors, size_t size)
{
    UInt8* const bytes = port.pixels.Bytes();
    if (depth == 32) {
        std::memset(bytes, 0xFF, size);
        return;
    }
    const UInt32 white = PixelValueOf(kWhiteColor, depth, colors);
    if (depth == 16) {
        for (size_t i = 0; i + 1 < size; i += 2) {
            bytes[i] = static_cast<UInt8>(white >> 8);
            bytes[i + 1] = static_cast<UInt8>(white);
        }
        return;
    }
    std::memset(bytes, static_cast<int>(white * (0xFFU / ((1U << depth) - 1))), size);
}

void DescribePixels(CGrafPort& port, int depth, CTabHandle colors)
{
    PixMap& map = port.pixMap.map;
    map.baseAddr = reinterpret_cast<Ptr>(port.pixels.Bytes());
    map.rowBytes = static_cast<SInt16>(kPixMapFlag | (port.rowBytes & kMostRowBytesInRecord));
    map.packSize = port.rowBytes > kMostRowBytesInRecord ? port.rowBytes : 0;
    map.bounds = port.bounds;
    map.hRes = map.vRes = k72;
    map.pixelSize = static_cast<SInt16>(depth);
    map.pixelType = depth > 8 ? kRGBDirect : SInt16{0};
    map.cmpCount = depth > 8 ? SInt16{3} : SInt16{1};
    map.cmpSize = static_cast<SInt16>(depth == 32 ? 8 : depth == 16 ? 5 : depth);
    map.pixelFormat = static_cast<OSType>(depth);
    map.pmTable = colors;
    port.pixMap.master = &map;
}

} // namespace

OSErr GivePixels(CGrafPort& port, int depth, SInt32 rowAlignment, CTabHandle colors)
{
    const SInt32 width = port.bounds.right - port.bounds.left;
    const SInt32 height = port.bounds.bottom - port.bounds.top;
    port.rowBytes = RowBytesFor(width, depth, rowAlignment);
    if (port.rowBytes == 0) {
        return paramErr;
    }
    // A spare row and a spare pixel: see the header.
    const size_t size =
        static_cast<size_t>(port.rowBytes) * (static_cast<size_t>(height) + 1) + kSparePixel;
    if (!port.pixels.Allocate(size) || !RegisterPort(port)) {
        return memFullErr;
    }
    FillWhite(port, depth, colors, size);
    DescribePixels(port, depth, colors);
    port.device.master = &port.device;
    port.device.port = &port;
    return noErr;
}

void TakePixels(CGrafPort& port)
{
    UnregisterPort(port);
    DisposeHandle(reinterpret_cast<Handle>(port.pixMap.map.pmTable));
    port.pixMap.map.pmTable = nullptr;
}

} // namespace toolbox

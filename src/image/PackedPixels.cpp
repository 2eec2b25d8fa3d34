// SPDX-License-Identifier: MIT
#include "src/image/PackedPixels.h"

#include "toolbox/CpuVersions.h"

VORN_CPU_VERSIONS void StoreBitRow(UInt8* row, SInt32 x, SInt32 count, const UInt8* pixels)
{
    StorePackedRow<1>(row, x, count, [=](SInt32 i) { return UInt32{pixels[i]}; });
}

VORN_CPU_VERSIONS void StorePairRow(UInt8* row, SInt32 x, SInt32 count, const UInt8* pixels)
{
    StorePackedRow<2>(row, x, count, [=](SInt32 i) { return UInt32{pixels[i]}; });
}

VORN_CPU_VERSIONS void StoreNibbleRow(UInt8* row, SInt32 x, SInt32 count, const UInt8* pixels)
{
    StorePackedRow<4>(row, x, count, [=](SInt32 i) { return UInt32{pixels[i]}; });
}

namespace
{

// What no pixel equals.
VORN_CPU_VERSIONS void StoreSetBits(UInt8* row, SInt32 x, SInt32 count)
{
    StorePackedRow<1>(row, x, count, [](SInt32) { return UInt32{1}; });
}

VORN_CPU_VERSIONS void StoreUnequalBits(UInt8* row, SInt32 x, SInt32 count, UInt8 transparent,
                                        const UInt8* pixels)
{
    StorePackedRow<1>(row, x, count, [=](SInt32 i) {
        return UInt32{static_cast<UInt8>(pixels[i] ^ transparent)};
    });
}

} // namespace

void StoreMaskRow(UInt8* row, SInt32 x, SInt32 count, SInt32 transparent, const UInt8* pixels)
{
    const auto index = static_cast<UInt8>(transparent);
    if (index == transparent)
        StoreUnequalBits(row, x, count, index, pixels);
    else
        StoreSetBits(row, x, count);
}

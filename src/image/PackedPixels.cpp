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

VORN_CPU_VERSIONS void StoreMaskRow(UInt8* row, SInt32 x, SInt32 count, SInt32 transparent,
                                    const UInt8* pixels)
{
    StorePackedRow<1>(row, x, count, [=](SInt32 i) { return UInt32{pixels[i] != transparent}; });
}

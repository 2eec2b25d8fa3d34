// SPDX-License-Identifier: MIT
#include "decoders/common/WideRows.h"

#include "toolbox/CpuVersions.h"

#include <cstring>

namespace
{

constexpr size_t kPixelBytes = 4;
constexpr size_t kColumnsInMask = 8;
constexpr UInt32 kEveryColumn = 0xFF;

inline void PutMaskPixel(UInt8* pixel, UInt8 alpha)
{
    const UInt32 grey = 0x01010101U * static_cast<UInt8>(255 - alpha);
    std::memcpy(pixel, &grey, sizeof grey);
}

VORN_CPU_VERSIONS void PutWholeMask(UInt8* row, const UInt8* samples, size_t width)
{
    for (size_t i = 0; i < width; ++i)
        PutMaskPixel(row + i * kPixelBytes, samples[i * kPixelBytes + 3]);
}

template <class Put>
void ForColumns(size_t width, UInt32 columns, Put put)
{
    for (size_t first = 0; first < kColumnsInMask; ++first) {
        if ((columns >> first & 1) == 0)
            continue;
        for (size_t column = first; column < width; column += kColumnsInMask)
            put(column);
    }
}

} // namespace

void PutWidePixels(UInt8* row, const UInt8* samples, size_t width, UInt32 columns, bool hasAlpha)
{
    const size_t sampleBytes = hasAlpha ? 4 : 3;
    ForColumns(width, columns, [=](size_t column) {
        std::memcpy(row + column * kPixelBytes + 1, samples + column * sampleBytes, 3);
    });
}

void PutWideMask(UInt8* row, const UInt8* samples, size_t width, UInt32 columns)
{
    if (columns == kEveryColumn)
        return PutWholeMask(row, samples, width);
    ForColumns(width, columns, [=](size_t column) {
        PutMaskPixel(row + column * kPixelBytes, samples[column * kPixelBytes + 3]);
    });
}

void WidePixelsFromCmyk(UInt8* row, size_t width, bool isInverted)
{
    const UInt32 flip = isInverted ? 0 : 0xFF;
    for (size_t i = 0; i < width; ++i) {
        UInt8* const pixel = row + i * kPixelBytes;
        const UInt32 cyan = pixel[0] ^ flip;
        const UInt32 magenta = pixel[1] ^ flip;
        const UInt32 yellow = pixel[2] ^ flip;
        const UInt32 light = pixel[3] ^ flip;
        pixel[0] = 0xFF;
        pixel[1] = static_cast<UInt8>(cyan * light / 255);
        pixel[2] = static_cast<UInt8>(magenta * light / 255);
        pixel[3] = static_cast<UInt8>(yellow * light / 255);
    }
}

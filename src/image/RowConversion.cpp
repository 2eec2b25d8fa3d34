// SPDX-License-Identifier: MIT
//
// Rows of 8-bit samples as direct-colour pixels. The loops are plain and over bytes, so that the
// compiler makes vector code of them and every machine writes the same bytes.
#include "src/image/PixelWriting.h"

#include "toolbox/CpuVersions.h"

#include <bit>
#include <cstring>

namespace
{

constexpr ptrdiff_t kBytesPer16bit = 2;
constexpr ptrdiff_t kBytesPer32bit = 4;
constexpr ptrdiff_t kBytesPerRGB = 3;
constexpr ptrdiff_t kBytesPerRGBA = 4;
constexpr int kColumnsInMask = 8;

// Against the right and bottom coordinates, not width and height; and the row at the bottom, which
// is one past the last, passes: callers count on both.
bool Takes(const PixelWriteState& state, int depth, SInt16 count, SInt16 row)
{
    return count <= state.bounds.right && row <= state.bounds.bottom && state.depth == depth;
}

UInt8* RowAddress(const PixelWriteState& state, SInt16 row)
{
    return state.baseAddr + ptrdiff_t{row} * state.rowBytes;
}

// The pixel 0RRRRRGGGGGBBBBB of the samples' top five bits, high byte first.
inline void Store555(UInt8* pixel, UInt32 red, UInt32 green, UInt32 blue)
{
    pixel[0] = static_cast<UInt8>((red >> 1 & 0x7C) | green >> 6);
    pixel[1] = static_cast<UInt8>((green << 2 & 0xE0) | blue >> 3);
}

inline void Store555(UInt8* pixel, const UInt8* rgb)
{
    Store555(pixel, rgb[0], rgb[1], rgb[2]);
}

inline void StoreGray555(UInt8* pixel, UInt32 gray)
{
    Store555(pixel, gray, gray, gray);
}

VORN_CPU_VERSIONS void RowFromRGB(UInt8* to, const UInt8* from, ptrdiff_t count)
{
    for (ptrdiff_t i = 0; i < count; ++i)
        Store555(to + i * kBytesPer16bit, from + i * kBytesPerRGB);
}

VORN_CPU_VERSIONS void RowFromRGBx(UInt8* to, const UInt8* from, ptrdiff_t count)
{
    for (ptrdiff_t i = 0; i < count; ++i)
        Store555(to + i * kBytesPer16bit, from + i * kBytesPerRGBA);
}

// A pixel and its mask from the two halves of a sample as a little-endian machine loads them: with
// 16 bits for everything there is half as much to spread and to gather as with single bytes.
inline void StoreFromHalves(UInt8* pixel, UInt8* mask, const UInt8* rgba)
{
    UInt16 greenRed = 0;
    UInt16 alphaBlue = 0;
    std::memcpy(&greenRed, rgba, sizeof greenRed);
    std::memcpy(&alphaBlue, rgba + sizeof greenRed, sizeof alphaBlue);
    const auto color = static_cast<UInt16>((greenRed >> 1 & 0x7C) | greenRed >> 14 |
                                           (greenRed & 0x3800) << 2 | (alphaBlue & 0xF8) << 5);
    const auto gray = static_cast<UInt16>((alphaBlue >> 9 & 0x7C) | alphaBlue >> 14 |
                                          (alphaBlue & 0x3800) << 2 | (alphaBlue >> 3 & 0x1F00));
    std::memcpy(pixel, &color, sizeof color);
    std::memcpy(mask, &gray, sizeof gray);
}

VORN_CPU_VERSIONS void RowsFromRGBA(UInt8* to, UInt8* mask, const UInt8* from, ptrdiff_t count)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        const UInt8* const rgba = from + i * kBytesPerRGBA;
        if constexpr (std::endian::native == std::endian::little) {
            StoreFromHalves(to + i * kBytesPer16bit, mask + i * kBytesPer16bit, rgba);
        } else {
            Store555(to + i * kBytesPer16bit, rgba);
            StoreGray555(mask + i * kBytesPer16bit, rgba[3]);
        }
    }
}

VORN_CPU_VERSIONS void RowFromGray(UInt8* to, const UInt8* from, ptrdiff_t count)
{
    for (ptrdiff_t i = 0; i < count; ++i)
        StoreGray555(to + i * kBytesPer16bit, from[i]);
}

// The byte that is no colour becomes the sample behind the pixel's own, past the row's last too.
inline void StoreWide(UInt8* pixel, const UInt8* rgb)
{
    pixel[0] = rgb[3];
    pixel[1] = rgb[0];
    pixel[2] = rgb[1];
    pixel[3] = rgb[2];
}

// Four pixels from 16 bytes, of which 13 count: small enough to become one shuffle of a register.
constexpr ptrdiff_t kBlockPixels = 4;
constexpr int kBlockBytes = 16;

inline void StoreBlock(UInt8* to, const UInt8* from)
{
    UInt8 samples[kBlockBytes];
    UInt8 pixels[kBlockBytes];
    std::memcpy(samples, from, kBlockBytes);
    for (int i = 0; i < kBlockPixels; ++i)
        StoreWide(pixels + i * kBytesPer32bit, samples + i * kBytesPerRGB);
    std::memcpy(to, pixels, kBlockBytes);
}

VORN_CPU_VERSIONS void WideRowFromRGB(UInt8* to, const UInt8* from, ptrdiff_t count)
{
    constexpr ptrdiff_t kBlocks = 4;
    ptrdiff_t i = 0;
    // The last block reads three bytes too many, so one pixel must be left behind it.
    for (; i + kBlocks * kBlockPixels < count; i += kBlocks * kBlockPixels) {
        UInt8* const pixels = to + i * kBytesPer32bit;
        const UInt8* const samples = from + i * kBytesPerRGB;
        for (int block = 0; block < kBlocks; ++block) {
            StoreBlock(pixels + block * kBlockPixels * kBytesPer32bit,
                       samples + block * kBlockPixels * kBytesPerRGB);
        }
    }
    for (; i < count; ++i)
        StoreWide(to + i * kBytesPer32bit, from + i * kBytesPerRGB);
}

VORN_CPU_VERSIONS void WideRowFromRGBA(UInt8* to, const UInt8* from, ptrdiff_t count)
{
    for (ptrdiff_t i = 0; i < count; ++i) {
        const UInt8* const rgb = from + i * kBytesPerRGBA;
        UInt8* const pixel = to + i * kBytesPer32bit;
        pixel[0] = 0xFF;
        pixel[1] = rgb[0];
        pixel[2] = rgb[1];
        pixel[3] = rgb[2];
    }
}

// Calls `store` with every column of the row that the mask has a bit for.
template <class Store>
void ForMaskedColumns(SInt32 columnMask, SInt16 count, Store store)
{
    for (int first = 0; first < kColumnsInMask; ++first) {
        if ((columnMask >> first & 1) == 0)
            continue;
        for (ptrdiff_t column = first; column < count; column += kColumnsInMask)
            store(column);
    }
}

bool IsEveryColumn(SInt32 columnMask)
{
    return (columnMask & 0xFF) == 0xFF;
}

} // namespace

void RGBSampleTo16bitGWorld(PixelWriteState* state, const UInt8* samples, SInt16 count, SInt16 row,
                            Boolean hasAlpha)
{
    if (!Takes(*state, 16, count, row))
        return;
    if (hasAlpha)
        RowFromRGBx(RowAddress(*state, row), samples, count);
    else
        RowFromRGB(RowAddress(*state, row), samples, count);
}

void RGBSampleTo32bitGWorld(PixelWriteState* state, const UInt8* samples, SInt16 count, SInt16 row,
                            Boolean hasAlpha)
{
    if (!Takes(*state, 32, count, row))
        return;
    if (hasAlpha)
        WideRowFromRGBA(RowAddress(*state, row), samples, count);
    else
        WideRowFromRGB(RowAddress(*state, row), samples, count);
}

void RGBAlphaTo16bitGWorld(PixelWriteState* state, PixelWriteState* maskState, const UInt8* samples,
                           SInt16 count, SInt16 row)
{
    if (Takes(*state, 16, count, row))
        RowsFromRGBA(RowAddress(*state, row), RowAddress(*maskState, row), samples, count);
}

void GrayscaleSampleTo16bitGWorld(PixelWriteState* state, const UInt8* gray, SInt16 count,
                                  SInt16 row)
{
    if (Takes(*state, 16, count, row))
        RowFromGray(RowAddress(*state, row), gray, count);
}

void InterlacedRGBTo16bitGWorld(PixelWriteState* state, const UInt8* samples, SInt16 count,
                                SInt16 row, SInt32 columnMask, Boolean hasAlpha)
{
    // An interlaced image's last pass is whole rows.
    if (IsEveryColumn(columnMask))
        return RGBSampleTo16bitGWorld(state, samples, count, row, hasAlpha);
    if (!Takes(*state, 16, count, row))
        return;
    UInt8* const pixels = RowAddress(*state, row);
    const ptrdiff_t sampleBytes = hasAlpha ? kBytesPerRGBA : kBytesPerRGB;
    ForMaskedColumns(columnMask, count, [=](ptrdiff_t column) {
        Store555(pixels + column * kBytesPer16bit, samples + column * sampleBytes);
    });
}

void InterlacedRGBAlphaTo16bitGWorld(PixelWriteState* state, PixelWriteState* maskState,
                                     const UInt8* samples, SInt16 count, SInt16 row,
                                     SInt32 columnMask)
{
    if (IsEveryColumn(columnMask))
        return RGBAlphaTo16bitGWorld(state, maskState, samples, count, row);
    if (!Takes(*state, 16, count, row))
        return;
    UInt8* const pixels = RowAddress(*state, row);
    UInt8* const mask = RowAddress(*maskState, row);
    ForMaskedColumns(columnMask, count, [=](ptrdiff_t column) {
        const UInt8* const sample = samples + column * kBytesPerRGBA;
        Store555(pixels + column * kBytesPer16bit, sample);
        StoreGray555(mask + column * kBytesPer16bit, sample[3]);
    });
}

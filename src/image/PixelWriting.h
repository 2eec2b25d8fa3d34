/* SPDX-License-Identifier: MIT
 *
 * Writing decoded pixels straight into the pixel memory of graphics worlds.
 *
 * The caller locks the pixels first and vouches for the sizes of its own buffers. Nothing here
 * reports: what is out of range, or has another depth than a function writes, is not written.
 * Points are local to the pixel memory: its first pixel is (0, 0) whatever the bounds say.
 */
#ifndef VORN_IMAGE_PIXELWRITING_H
#define VORN_IMAGE_PIXELWRITING_H

#include "src/util/Export.h"
#include "toolbox/quickdraw/Copying.h"

TOOLBOX_BEGIN_DECLS

/* What the writing functions know of a pixel map. The order of the fields is part of the binary
 * interface. */
typedef struct PixelWriteState {
    UInt8 depth;         /* bits a pixel, 1 for a bit map */
    UInt8 prepared;      /* 1 once PrepareSetPixel has filled the record */
    UInt16 rowBytes;     /* from one row to the next */
    UInt8* baseAddr;     /* of the first pixel */
    SInt16 rowOffset;    /* added to every vertical coordinate */
    SInt16 columnOffset; /* added to every horizontal coordinate */
    Rect bounds;         /* the pixel map's; not filled in for a bit map */
} PixelWriteState;

/* Fills the record from a pixel map. */
VORN_EXPORT void PrepareSetPixel(PixMapHandle pixels, PixelWriteState* state);

/* Single pixels and rows of any depth. `clip` is by which the functions decide whether a place may
 * be written, usually the state's bounds; a row is written whole or not at all. */
VORN_EXPORT void SetPixMapPixel(PixelWriteState* state, const Rect* clip, Point place,
                                UInt32 value);
VORN_EXPORT void SetPixMapRowPixels(PixelWriteState* state, const Rect* clip, Point start,
                                    SInt16 count, const UInt8* pixels);
VORN_EXPORT void SetMaskPixMapRowPixels(PixelWriteState* state, const Rect* clip, Point start,
                                        SInt16 count, SInt16 transparent, const UInt8* pixels);
VORN_EXPORT void SetPixMapRowValues(PixelWriteState* state, const Rect* clip, Point start,
                                    SInt16 count, const SInt32* values);
VORN_EXPORT void SetPixMapRowIndices(PixelWriteState* state, const Rect* clip, Point start,
                                     SInt16 count, const UInt8* packed);
VORN_EXPORT void SetPixMapByteIndex(PixelWriteState* state, const Rect* clip, Point place,
                                    UInt8 byte);
VORN_EXPORT SInt32 GetPixMapPixel(PixelWriteState* state, Point place);
VORN_EXPORT UInt32 RGBToDirectPixel(const RGBColor* color, SInt16 depth);

/* Rows of 8-bit samples into direct-colour pixels, from the first pixel of `row` on. */
VORN_EXPORT void InterlacedRGBTo16bitGWorld(PixelWriteState* state, const UInt8* samples,
                                            SInt16 count, SInt16 row, SInt32 columnMask,
                                            Boolean hasAlpha);
VORN_EXPORT void InterlacedRGBAlphaTo16bitGWorld(PixelWriteState* state, PixelWriteState* maskState,
                                                 const UInt8* samples, SInt16 count, SInt16 row,
                                                 SInt32 columnMask);
VORN_EXPORT void RGBSampleTo16bitGWorld(PixelWriteState* state, const UInt8* samples, SInt16 count,
                                        SInt16 row, Boolean hasAlpha);
VORN_EXPORT void RGBSampleTo32bitGWorld(PixelWriteState* state, const UInt8* samples, SInt16 count,
                                        SInt16 row, Boolean hasAlpha);
VORN_EXPORT void RGBAlphaTo16bitGWorld(PixelWriteState* state, PixelWriteState* maskState,
                                       const UInt8* samples, SInt16 count, SInt16 row);
VORN_EXPORT void GrayscaleSampleTo16bitGWorld(PixelWriteState* state, const UInt8* gray,
                                              SInt16 count, SInt16 row);

TOOLBOX_END_DECLS

/* Fills depth, address and row bytes from a bit map; the caller sets the rest. */
void PrepareSetBit(const BitMap* bits, PixelWriteState* state);

#endif

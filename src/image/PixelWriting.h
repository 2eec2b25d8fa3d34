/* SPDX-License-Identifier: MIT
 *
 * Writing decoded pixels straight into the pixel memory of graphics worlds.
 *
 * The caller locks the pixels first and vouches for the sizes of its own buffers. Nothing here
 * reports: what is out of range, has no pixels (a count of 0 or less), or has another depth than a
 * function writes, is not written. Several functions behave in ways that look like slips; those
 * said to be on purpose below are what decoders are written against.
 *
 * Points are local to the pixel memory: its first pixel is (0, 0) whatever the bounds say. Pixel
 * memory and words in it are big-endian on every machine: a 16-bit pixel is 0RRRRRGGGGGBBBBB, high
 * byte first, a 32-bit pixel the bytes x, R, G, B.
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
    UInt8 prepared;      /* 1 once PrepareSetPixel has filled the record; nothing looks at it */
    UInt16 rowBytes;     /* from one row to the next */
    UInt8* baseAddr;     /* of the first pixel */
    SInt16 rowOffset;    /* added to every vertical coordinate; the sum does not wrap */
    SInt16 columnOffset; /* added to every horizontal coordinate; the sum wraps at 16 bits */
    Rect bounds;         /* the pixel map's; not filled in for a bit map */
} PixelWriteState;

/* Fills the whole record from a pixel map, with offsets of 0. The row bytes are taken as the
 * toolbox gives them. */
VORN_EXPORT void PrepareSetPixel(PixMapHandle pixels, PixelWriteState* state);

/* Single pixels and rows of any depth ---------------------------------------------------------
 *
 * Row v + rowOffset, from column h + columnOffset on. `clip` is by which they decide whether a
 * place may be written, before the offsets are added, usually the state's bounds: the place must
 * be inside, and of a row also its end, left to right: it is written whole or not at all. The
 * first pixel of a byte is in its highest bits. */

/* Writes one pixel. Depth 1: any value but 0 is a set bit. Depths 2 and 4: a value wider than the
 * pixel spills into the pixels before it in the same byte (their bits are set where the value's
 * are), on purpose; what spills past the byte is dropped. Depths 8, 16, 32: the low bits. */
VORN_EXPORT void SetPixMapPixel(PixelWriteState* state, const Rect* clip, Point place,
                                UInt32 value);
/* Writes a row of pixels of one byte each, packed as SetPixMapPixel packs them, at depths 1, 2, 4
 * and 8; at 16 and 32 nothing, on purpose. */
VORN_EXPORT void SetPixMapRowPixels(PixelWriteState* state, const Rect* clip, Point start,
                                    SInt16 count, const UInt8* pixels);
/* Writes a row of a one-bit mask: clears the bits of the pixels (one byte each) that are
 * `transparent` and sets the others. A number that no byte is, such as -1, matches none: the row
 * becomes opaque. The depth is not looked at. */
VORN_EXPORT void SetMaskPixMapRowPixels(PixelWriteState* state, const Rect* clip, Point start,
                                        SInt16 count, SInt16 transparent, const UInt8* pixels);
/* Writes a row of pixels of 32 bits each, high byte first in memory on every machine. As
 * SetPixMapPixel; depths 4 to 16 look at the low bits only (byte, byte, word). */
VORN_EXPORT void SetPixMapRowValues(PixelWriteState* state, const Rect* clip, Point start,
                                    SInt16 count, const SInt32* values);
/* Copies pixels that are packed already: as many whole bytes as hold `count` pixels of depth 1, 2,
 * 4 or 8, to the byte that holds the first column. The caller sees to it that the column is the
 * first of its byte, and accepts that a last byte is written whole. */
VORN_EXPORT void SetPixMapRowIndices(PixelWriteState* state, const Rect* clip, Point start,
                                     SInt16 count, const UInt8* packed);
/* Stores one byte of packed pixels of depth 1, 2, 4 or 8 whole, where the place's column is. Here
 * the clip's right coordinate itself is inside, on purpose. */
VORN_EXPORT void SetPixMapByteIndex(PixelWriteState* state, const Rect* clip, Point place,
                                    UInt8 byte);
/* Reads one pixel, wherever it is: there is no clip. Depth 1 counts the bits of a byte from the
 * lowest, the reverse of how they are written, and depth 8 gives -128 to 127, both on purpose;
 * depth 16 gives 0 to 65535, depth 32 all bits. 0 at other depths, 2 and 4 among them. */
VORN_EXPORT SInt32 GetPixMapPixel(PixelWriteState* state, Point place);

/* The pixel value of a colour. Depth 1: 1 (black) for a red of up to 0x7FFE, else 0; green and
 * blue do not count, on purpose. Depths 2, 4, 8: its index for the current graphics device. Depths
 * 16 and 32: the components' high bits. 0 at other depths. */
VORN_EXPORT UInt32 RGBToDirectPixel(const RGBColor* color, SInt16 depth);

/* Rows of 8-bit samples -------------------------------------------------------------------------
 *
 * They fill `row` from its first pixel on; offsets do not count. A row is written if `count` is at
 * most the bounds' right coordinate and `row` at most their bottom one (not the width and height;
 * and the bottom itself, one past the last row of bounds that begin at 0, is written: both on
 * purpose), and if the depth is the function's. A 16-bit pixel is made of the samples' top five
 * bits, a mask's pixel is the grey of the alpha, without a threshold. `maskState` gives nothing but
 * the mask's address and row bytes; what may be written is decided by `state`. */

/* Samples R, G, B, and with `hasAlpha` a fourth that is skipped. Pixel i is written if the bit i
 * mod 8 of `columnMask` is set, the lowest bit being bit 0; `samples` holds all pixels. */
VORN_EXPORT void InterlacedRGBTo16bitGWorld(PixelWriteState* state, const UInt8* samples,
                                            SInt16 count, SInt16 row, SInt32 columnMask,
                                            Boolean hasAlpha);
/* The same for R, G, B, A, and with the same columns of the mask. */
VORN_EXPORT void InterlacedRGBAlphaTo16bitGWorld(PixelWriteState* state, PixelWriteState* maskState,
                                                 const UInt8* samples, SInt16 count, SInt16 row,
                                                 SInt32 columnMask);
/* Samples R, G, B, and with `hasAlpha` a fourth that is skipped. */
VORN_EXPORT void RGBSampleTo16bitGWorld(PixelWriteState* state, const UInt8* samples, SInt16 count,
                                        SInt16 row, Boolean hasAlpha);
/* The same for 32-bit pixels. Their first byte is 0xFF with `hasAlpha`, whatever the alpha; without
 * it, it is the byte behind the pixel's three samples, on purpose: so one byte behind the last
 * pixel's samples must be readable. */
VORN_EXPORT void RGBSampleTo32bitGWorld(PixelWriteState* state, const UInt8* samples, SInt16 count,
                                        SInt16 row, Boolean hasAlpha);
/* Samples R, G, B, A, the alpha into the same row of a 16-bit mask. */
VORN_EXPORT void RGBAlphaTo16bitGWorld(PixelWriteState* state, PixelWriteState* maskState,
                                       const UInt8* samples, SInt16 count, SInt16 row);
/* One sample a pixel. */
VORN_EXPORT void GrayscaleSampleTo16bitGWorld(PixelWriteState* state, const UInt8* gray,
                                              SInt16 count, SInt16 row);

TOOLBOX_END_DECLS

/* Fills depth (1), address and row bytes (without their two flag bits) from a bit map; the caller
 * sets the rest. */
void PrepareSetBit(const BitMap* bits, PixelWriteState* state);

#endif

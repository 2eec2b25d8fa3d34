/* SPDX-License-Identifier: MIT
 *
 * QuickDraw: pixel maps, colour tables and copying between pixel maps.
 *
 * Pixels are 1, 2, 4 or 8 bits (indices into the colour table, the first pixel of a byte in its
 * highest bits), 16 bits (0RRRRRGGGGGBBBBB, high byte first) or 32 bits (the bytes x, R, G, B).
 */
#ifndef VORN_TOOLBOX_COPYING_H
#define VORN_TOOLBOX_COPYING_H

#include "toolbox/quickdraw/QuickDraw.h"

TOOLBOX_BEGIN_DECLS

typedef SInt32 Fixed; /* 16.16 */

typedef struct ColorSpec {
    SInt16 value; /* the index this entry stands for */
    RGBColor rgb;
} ColorSpec;

/* The block of a colour table handle: 8 bytes and then 8 for each entry. */
typedef struct ColorTable {
    SInt32 ctSeed; /* tells tables with different contents apart */
    SInt16 ctFlags;
    SInt16 ctSize; /* number of entries minus 1 */
    ColorSpec ctTable[1];
} ColorTable;
typedef ColorTable* CTabPtr;
typedef CTabPtr* CTabHandle; /* made with NewHandle, disposed of with DisposeHandle */
TOOLBOX_STATIC_ASSERT(sizeof(ColorSpec) == 8, "ColorSpec is four 16-bit fields");
TOOLBOX_STATIC_ASSERT(offsetof(ColorTable, ctTable) == 8, "the header is 8 bytes");

/* One bit a pixel. Begins as PixMap does. */
typedef struct BitMap {
    Ptr baseAddr;    /* of the pixel at the top left of `bounds` */
    SInt16 rowBytes; /* bytes from one row to the next, in the low 14 bits */
    Rect bounds;
} BitMap;

typedef struct PixMap {
    Ptr baseAddr;
    SInt16
        rowBytes; /* as in BitMap, with the high bit set: so a pixel map is told from a bit map */
    Rect bounds;
    SInt16 pmVersion;
    SInt16 packType;
    SInt32 packSize; /* the row bytes where they do not fit 14 bits, as rows of up to 65535 do */
    Fixed hRes;      /* pixels an inch, 72.0 */
    Fixed vRes;
    SInt16 pixelType; /* 0: indices, 16: direct colours */
    SInt16 pixelSize; /* bits a pixel */
    SInt16 cmpCount;  /* components a pixel: 1, or 3 for direct colours */
    SInt16 cmpSize;   /* bits a component */
    OSType pixelFormat;
    CTabHandle pmTable; /* of indexed pixels, else null */
} PixMap;
typedef PixMap* PixMapPtr;
typedef PixMapPtr* PixMapHandle;
TOOLBOX_STATIC_ASSERT(offsetof(PixMap, bounds) == offsetof(BitMap, bounds), "the same beginning");

enum { srcCopy = 0, ditherCopy = 64 };

/* Copies `srcRect` of one map onto `dstRect` of another, scaled where their sizes differ: where a
 * direction shrinks areas are averaged, where it grows the nearest pixel is taken. A map is passed
 * as the platform does it: the address of a PixMap, cast. Copying within one map may overlap.
 * Drawn is what the source has pixels for and what lies in the target's bounds, in the clip region
 * of the port whose pixels they are, and in `maskRgn` (target's coordinates; null: no limit); that
 * is added to the port's dirty region. The same port's colours tint what is copied, component by
 * component: black becomes its foreground, white its background colour; so do the set and the
 * clear pixels of a bit map. Mode ditherCopy dithers from 32 bits to 16 and to indices of colours
 * that a table does not have, by a pattern that is fixed to the target's coordinates; any other
 * mode cuts off or takes the nearest colour. Colours of tables are remembered by the tables'
 * seeds. While the current port records a picture, copies to it are recorded instead. An empty
 * rectangle copies nothing. */
TOOLBOX_EXPORT void CopyBits(const BitMap* srcBits, const BitMap* dstBits, const Rect* srcRect,
                             const Rect* dstRect, SInt16 mode, RgnHandle maskRgn);
/* The same, in mode srcCopy, through a mask over the source: black pixels (set bits) of `maskRect`
 * let the source's pixel through, white ones keep the target's exactly. */
TOOLBOX_EXPORT void CopyMask(const BitMap* srcBits, const BitMap* maskBits, const BitMap* dstBits,
                             const Rect* srcRect, const Rect* maskRect, const Rect* dstRect);
/* The same through a mask of any depth, whose greys blend, component by component. The unused bits
 * of direct pixels that a deeper mask than one of one bit draws to stay as they are. */
TOOLBOX_EXPORT void CopyDeepMask(const BitMap* srcBits, const BitMap* maskBits,
                                 const BitMap* dstBits, const Rect* srcRect, const Rect* maskRect,
                                 const Rect* dstRect, SInt16 mode, RgnHandle maskRgn);

TOOLBOX_END_DECLS

#endif

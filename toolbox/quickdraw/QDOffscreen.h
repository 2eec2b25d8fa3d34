/* SPDX-License-Identifier: MIT
 *
 * QuickDraw: graphics worlds, ports whose pixels are in memory and on no screen.
 */
#ifndef VORN_TOOLBOX_QDOFFSCREEN_H
#define VORN_TOOLBOX_QDOFFSCREEN_H

#include "toolbox/quickdraw/Copying.h"

TOOLBOX_BEGIN_DECLS

typedef UInt32 GWorldFlags;
enum {
    useTempMem = 1 << 2,      /* NewGWorld: memory outside the application's own; here the same */
    pixelsPurgeable = 1 << 6, /* of a pixels state */
    pixelsLocked = 1 << 7
};

/* Makes a graphics world of `pixelDepth` bits a pixel (1, 2, 4, 8, 16 or 32; 0 means 32), white
 * (the nearest to it that its table has), with a copy of the colour table (null: the platform's
 * table of that depth; not looked at for direct colours). The copy has the table's seed, or a new
 * one if that is 0. Behind the pixels there is memory for one row and one pixel more. `device` must
 * be null. *world is null on failure: paramErr for bounds that are empty or need more than 65535
 * row bytes (32 bits: wider than 16383 pixels), or another depth; memFullErr. The caller owns
 * it. */
TOOLBOX_EXPORT OSErr NewGWorld(GWorldPtr* world, SInt16 pixelDepth, const Rect* bounds,
                               CTabHandle colors, GDHandle device, GWorldFlags flags);
/* Null is allowed. */
TOOLBOX_EXPORT void DisposeGWorld(GWorldPtr world);
/* The pixel map of a graphics world or a window's port; it belongs to the port, and its handle is
 * none of the Memory Manager's. */
TOOLBOX_EXPORT PixMapHandle GetGWorldPixMap(GWorldPtr world);
/* Keeps the pixels where they are until they are unlocked; false if there are none. This and what
 * follows is for handles that GetGWorldPixMap gave. */
TOOLBOX_EXPORT Boolean LockPixels(PixMapHandle pixels);
TOOLBOX_EXPORT void UnlockPixels(PixMapHandle pixels);
/* The flags above, to be put back later. */
TOOLBOX_EXPORT GWorldFlags GetPixelsState(PixMapHandle pixels);
TOOLBOX_EXPORT void SetPixelsState(PixMapHandle pixels, GWorldFlags state);
/* The address of the first pixel, to be used while the pixels are locked. */
TOOLBOX_EXPORT Ptr GetPixBaseAddr(PixMapHandle pixels);
/* Bytes from one row to the next, without flag bits. */
TOOLBOX_EXPORT SInt32 GetPixRowBytes(PixMapHandle pixels);

TOOLBOX_END_DECLS

#endif

/* SPDX-License-Identifier: MIT
 *
 * QuickDraw: ports, colours, regions and rectangles. Pixel maps and copying: Copying.h; graphics
 * worlds: QDOffscreen.h; pictures: Pictures.h.
 *
 * Pixel memory is big-endian on every machine: at 32 bits a pixel is the bytes x, R, G, B.
 * Coordinates are local to the current port unless said otherwise. The current port and device
 * belong to the thread; a new thread starts with its maker's. Drawing is clipped to the port's
 * clip region and bounds, and what it touched in a window's port is added to its dirty region.
 */
#ifndef VORN_TOOLBOX_QUICKDRAW_H
#define VORN_TOOLBOX_QUICKDRAW_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

typedef struct RGBColor {
    UInt16 red;
    UInt16 green;
    UInt16 blue;
} RGBColor;

typedef struct CGrafPort* CGrafPtr;
typedef CGrafPtr GrafPtr;
typedef CGrafPtr GWorldPtr;
typedef CGrafPtr WindowRef; /* a window is known by its port */
typedef struct GDeviceRecord** GDHandle;
typedef struct MacRegion** RgnHandle;

/* The current port of this thread; null before a SetPort. */
TOOLBOX_EXPORT void GetPort(CGrafPtr* port);
TOOLBOX_EXPORT void SetPort(CGrafPtr port);
/* The current port and its device. */
TOOLBOX_EXPORT void GetGWorld(CGrafPtr* port, GDHandle* device);
/* A graphics world brings its own device, whatever is given. */
TOOLBOX_EXPORT void SetGWorld(CGrafPtr port, GDHandle device);
/* The port's bounds in its own coordinates; returns `bounds`. */
TOOLBOX_EXPORT Rect* GetPortBounds(CGrafPtr port, Rect* bounds);
/* The window of a window's port, null for an off-screen one. */
TOOLBOX_EXPORT WindowRef GetWindowFromPort(CGrafPtr port);

/* The colours that drawing uses: those of the current port. A new port's are black and white. */
enum { whiteColor = 30, blackColor = 33 };
/* Sets the colour by one of the names above (any other is black), or by its components. */
TOOLBOX_EXPORT void ForeColor(SInt32 color);
TOOLBOX_EXPORT void BackColor(SInt32 color);
TOOLBOX_EXPORT void RGBForeColor(const RGBColor* color);
TOOLBOX_EXPORT void RGBBackColor(const RGBColor* color);
/* Fills the rectangle, as far as the current port's clip lets it, with the background colour. */
TOOLBOX_EXPORT void EraseRect(const Rect* rect);
/* The index of the nearest colour in the current device's colour table; where that has none, the
 * pixel value itself: of 16 bits on a device of 16, else of 32. */
TOOLBOX_EXPORT SInt32 Color2Index(const RGBColor* color);
/* A number that no colour table has had for its seed in this process. */
TOOLBOX_EXPORT SInt32 GetCTSeed(void);

/* Moves a rectangle. Coordinates wrap at 16 bits, as the platform's do. */
TOOLBOX_EXPORT void OffsetRect(Rect* rect, SInt16 dh, SInt16 dv);
TOOLBOX_EXPORT Boolean EqualRect(const Rect* a, const Rect* b);
/* Moves and scales `rect` as `from` would have to be to become `to`. Sides are rounded to the
 * nearest; a `from` of no size only moves. */
TOOLBOX_EXPORT void MapRect(Rect* rect, const Rect* from, const Rect* to);
/* Adds the current port's origin on the screen to a local point. */
TOOLBOX_EXPORT void LocalToGlobal(Point* point);

/* A new empty region, owned by the caller; null without memory. */
TOOLBOX_EXPORT RgnHandle NewRgn(void);
TOOLBOX_EXPORT void DisposeRgn(RgnHandle region);
/* Makes the region one rectangle (an empty one for an empty rectangle). */
TOOLBOX_EXPORT void RectRgn(RgnHandle region, const Rect* rect);
/* Copies the current port's clip region into `region`, or `region` into it. A new port's clip is
 * the widest rectangle there is. */
TOOLBOX_EXPORT void GetClip(RgnHandle region);
TOOLBOX_EXPORT void SetClip(RgnHandle region);

/* For hosts ------------------------------------------------------------------------------- */

/* Makes the port of a window that stands at `bounds` on the screen: 32 bits a pixel, white, its
 * own coordinates starting with 0,0 at the top left. memFullErr without memory, paramErr for
 * bounds that are empty or wider or higher than 32767. The host owns and presents it. */
TOOLBOX_EXPORT OSErr CreateWindowPort(const Rect* bounds, CGrafPtr* port);
/* Gives the port other bounds: what it shows stays as far as it fits, the rest is white, and all of
 * it counts as drawn to. Its pixels move. On failure (as above) nothing changes. */
TOOLBOX_EXPORT OSErr ResizeWindowPort(CGrafPtr port, const Rect* bounds);
TOOLBOX_EXPORT void DisposeWindowPort(CGrafPtr port);
/* The port's pixels: address of its top-left pixel and bytes from one row to the next. The memory
 * stays where it is until the port is resized or disposed of. */
TOOLBOX_EXPORT UInt8* GetPortPixels(CGrafPtr port, SInt32* rowBytes);
/* Copies what was drawn to since the last call into `region` (if not null), and forgets it.
 * True if that was anything. */
TOOLBOX_EXPORT Boolean TakeDirtyRegion(CGrafPtr port, RgnHandle region);
/* The number of rectangles a region consists of, and one of them (index from 0). */
TOOLBOX_EXPORT SInt32 CountRegionRects(RgnHandle region);
TOOLBOX_EXPORT Rect GetRegionRect(RgnHandle region, SInt32 index);

TOOLBOX_END_DECLS

#endif

/* SPDX-License-Identifier: MIT
 *
 * Making and clearing graphics worlds for frames.
 */
#ifndef VORN_IMAGE_GRAPHICSWORLDS_H
#define VORN_IMAGE_GRAPHICSWORLDS_H

#include "src/util/Export.h"
#include "toolbox/quickdraw/QDOffscreen.h"

TOOLBOX_BEGIN_DECLS

/* Erases all of the graphics world's bounds to white, and leaves white as its background colour.
 * The current graphics world and the state of the pixels (locked or not) are as before. -1 if the
 * pixels cannot be locked: then nothing is erased; else 0. */
VORN_EXPORT OSErr BlankGWorld(GWorldPtr world);

/* Makes a white graphics world of `depth` bits a pixel (1, 2, 4, 8, 16 or 32; 0 means 32) for the
 * caller, who disposes of it with DisposeGWorld. `colors` is copied; null is the platform's table
 * of that depth. *result is written on success (0) only. What NewGWorld fails with is returned as
 * it is; so is BlankGWorld's -1, and then the new world stays alive, on purpose, with nobody to
 * know it. */
VORN_EXPORT OSErr MakeGWorld(const Rect* bounds, SInt16 depth, CTabHandle colors,
                             Boolean useTemporaryMemory, GWorldPtr* result);

TOOLBOX_END_DECLS

#endif

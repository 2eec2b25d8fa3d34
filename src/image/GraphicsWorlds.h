/* SPDX-License-Identifier: MIT
 *
 * Making and clearing graphics worlds for frames.
 */
#ifndef VORN_IMAGE_GRAPHICSWORLDS_H
#define VORN_IMAGE_GRAPHICSWORLDS_H

#include "src/util/Export.h"
#include "toolbox/quickdraw/QDOffscreen.h"

TOOLBOX_BEGIN_DECLS

/* Makes the graphics world white. -1 if its pixels cannot be locked, else 0. */
VORN_EXPORT OSErr BlankGWorld(GWorldPtr world);
/* Makes a white graphics world; *result is written on success only. What NewGWorld or BlankGWorld
 * fails with is returned; a world that could not be made white is lost. */
VORN_EXPORT OSErr MakeGWorld(const Rect* bounds, SInt16 depth, CTabHandle colors,
                             Boolean useTemporaryMemory, GWorldPtr* result);

TOOLBOX_END_DECLS

#endif

/* SPDX-License-Identifier: MIT
 *
 * QuickDraw: pictures, recordings of drawing in the PICT format, version 2.
 */
#ifndef VORN_TOOLBOX_PICTURES_H
#define VORN_TOOLBOX_PICTURES_H

#include "toolbox/quickdraw/QuickDraw.h"

TOOLBOX_BEGIN_DECLS

/* The block of a picture handle is the picture as it stands in a file after its 512 bytes of
 * header: big-endian on every machine. */
typedef struct Picture {
    UInt8 picSize[2];  /* the low 16 bits of the block's size */
    UInt8 picFrame[8]; /* a Rect */
} Picture;
typedef Picture** PicHandle; /* a handle of the Memory Manager */

/* From now until ClosePicture, CopyBits to the current port is recorded instead of drawn. Returns
 * the handle that will hold the picture, which the caller owns; null without memory or if one is
 * already being recorded. */
TOOLBOX_EXPORT PicHandle OpenPicture(const Rect* frame);
/* Ends the recording. A picture for which memory ran out is left with an empty frame. */
TOOLBOX_EXPORT void ClosePicture(void);
/* Null is allowed. */
TOOLBOX_EXPORT void KillPicture(PicHandle picture);

TOOLBOX_END_DECLS

#endif

/* SPDX-License-Identifier: MIT
 *
 * Driving an image from its decoder, which may hold only the object. Each function does what the
 * operation of VornImagePlugin of its name does: see VornImagePlugin.h. The object must be an
 * image; exceptions (paramErr for a frame that there is not) pass through, the entry points catch
 * them. Frames count from 0.
 */
#ifndef VORN_IMAGE_IMAGEFUNCTIONS_H
#define VORN_IMAGE_IMAGEFUNCTIONS_H

#include "src/plugin/VornPluginABI.h"
#include "toolbox/quickdraw/QDOffscreen.h"

TOOLBOX_BEGIN_DECLS

/* What becomes of a frame's area before the next frame is drawn. -1 counts as 2, any other value
 * as 0. */
typedef SInt8 TDisposalMethod;
enum {
    kDisposalUnspecified = 0,
    kDisposalLeaveInPlace = 1,
    kDisposalRestoreBackground = 2,
    kDisposalRestorePrevious = 3
};

/* The image as a whole. The colour table and the buffer (made with NewPtr) pass to the image. */
VORN_EXPORT void SetImageColorTable(VornPlugin* image, CTabHandle colors);
VORN_EXPORT void SetImageBackgroundColor(VornPlugin* image, const RGBColor* color);
VORN_EXPORT void SetImageLooping(VornPlugin* image, unsigned char loop, SInt16 loopCount);
VORN_EXPORT Ptr GetImageTempBuffer(VornPlugin* image);
VORN_EXPORT void SetImageTempBuffer(VornPlugin* image, Ptr buffer);
VORN_EXPORT void InvalImageRow(VornPlugin* image, SInt16 row);
VORN_EXPORT SInt16 GetImageCurFrame(VornPlugin* image);
VORN_EXPORT void SetImageCurFrame(VornPlugin* image, SInt16 index);
VORN_EXPORT unsigned char GetImageUsesTempMem(VornPlugin* image);

/* Appends a white frame of `depth` bits a pixel, with a mask if maskDepth is not 0, and tells its
 * index. What making its graphics worlds fails with, or memFullErr, adds no frame. */
VORN_EXPORT OSErr AddNewFrame(VornPlugin* image, const Rect* bounds, UInt16 depth,
                              CTabHandle colors, UInt16 maskDepth, SInt16* index);
VORN_EXPORT GWorldPtr GetFrameGWorld(VornPlugin* image, SInt16 index);
VORN_EXPORT GWorldPtr GetFrameMaskGWorld(VornPlugin* image, SInt16 index);
/* Graphics worlds pass to the frame; the one it had is disposed of. */
VORN_EXPORT void SetFrameGWorld(VornPlugin* image, SInt16 index, GWorldPtr world);
VORN_EXPORT void SetFrameMaskGWorld(VornPlugin* image, SInt16 index, GWorldPtr world);
VORN_EXPORT void SetFrameDisplayPos(VornPlugin* image, SInt16 index, Point position);
VORN_EXPORT void SetFrameTransparency(VornPlugin* image, SInt16 index, unsigned char transparent,
                                      SInt16 transparentIndex);
/* In hundredths of a second; kept in sixtieths, rounded down. */
VORN_EXPORT void SetFrameDelay(VornPlugin* image, SInt16 index, UInt16 hundredths);
VORN_EXPORT void SetFrameUserInput(VornPlugin* image, SInt16 index, unsigned char userInput);
VORN_EXPORT void SetFrameDisposalMethod(VornPlugin* image, SInt16 index, TDisposalMethod method);

TOOLBOX_END_DECLS

#endif

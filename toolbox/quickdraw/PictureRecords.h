// SPDX-License-Identifier: MIT
//
// The records of a picture, version 2 of the format: each an operation's code and its operands.
#pragma once

#include "toolbox/quickdraw/PictureBytes.h"
#include "toolbox/quickdraw/PictureRows.h"
#include "toolbox/quickdraw/Region.h"

namespace toolbox
{

inline constexpr size_t kPictureHeaderSize = 10; // size and frame

// The records that say which version the picture is of, and its frame and resolution.
void AddVersion(PictureBytes& bytes, const Rect& frame);
void AddClip(PictureBytes& bytes, const pixman_region32_t& clip);
// The colours that copying tints with from now on.
void AddColors(PictureBytes& bytes, const RGBColor& foreground, const RGBColor& background);
// Pixels: `part` of a map, whose rows are given, drawn at `to`; null is no mask region.
void AddPixels(PictureBytes& bytes, const PixMap& map, const Rect& part, const Rect& to,
               SInt16 mode, RgnHandle maskRgn, PictureRows& rows);
void AddEnd(PictureBytes& bytes);

// The platform's form of a region: its size and bounds, and, if it is more than one rectangle, the
// places on each line where inside and outside change and did not on the line above.
void AddRegion(PictureBytes& bytes, const pixman_region32_t& region);

} // namespace toolbox

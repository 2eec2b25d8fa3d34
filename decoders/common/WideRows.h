// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <cstddef>

// Rows for 32-bit pixel maps (the bytes x, R, G, B) and their masks, as far as the functions of
// src/image/PixelWriting.h do not write them.

// Writes the pixels of those columns whose bit (column mod 8) is set in `columns`, from R, G, B
// samples, 4 bytes a pixel with `hasAlpha` and 3 without.
void PutWidePixels(UInt8* row, const UInt8* samples, size_t width, UInt32 columns, bool hasAlpha);
// The same for the mask, from R, G, B, alpha samples: a grey of 255 - alpha, for in a mask black
// is opaque.
void PutWideMask(UInt8* row, const UInt8* samples, size_t width, UInt32 columns);
// Turns a row of C, M, Y, K samples in its place into pixels. `isInverted`, as Adobe's programs
// write: 255 is no ink.
void WidePixelsFromCmyk(UInt8* row, size_t width, bool isInverted);

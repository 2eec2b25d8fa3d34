// SPDX-License-Identifier: MIT
//
// Changing spans of colours: tinting and blending.
#pragma once

#include "toolbox/quickdraw/SpanReader.h"

namespace toolbox
{

// Component by component from the tint's black to its white.
void TintColors(Color* colors, int count, const Tint& tint);

// What the mask's black lets through of `colors` stays there; its white brings `under` instead,
// and its greys what lies between, component by component. What is no color is always under's.
void BlendColors(const Color* mask, const Color* under, int count, Color* colors);

// The same for colors that the mask was already taken from (blended with black) in finer steps
// than its own, which are averages.
void AddUnder(const Color* mask, const Color* under, int count, Color* colors);

} // namespace toolbox

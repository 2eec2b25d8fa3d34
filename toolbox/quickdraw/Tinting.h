// SPDX-License-Identifier: MIT
//
// Changing spans of colours: tinting and blending.
#pragma once

#include "toolbox/quickdraw/SpanReader.h"

namespace toolbox
{

// Component by component from the tint's black to its white.
void TintColors(Color* colors, int count, const Tint& tint);

// Replaces what the mask's black lets through of `colors`: its white brings `target` instead, and
// its greys what lies between, component by component.
void BlendColors(const Color* mask, const Color* target, int count, Color* colors);

} // namespace toolbox

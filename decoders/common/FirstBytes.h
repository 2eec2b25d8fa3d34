// SPDX-License-Identifier: MIT
#pragma once

#include "src/plugin/VornPlugin.h"

#include <span>

// Whether the object's data begin with `signature`. Nothing is thrown where they are shorter or
// cannot be read, and the place that is read next stays as it was.
bool BeginsWith(VornPlugin& object, std::span<const UInt8> signature);

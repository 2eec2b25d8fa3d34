// SPDX-License-Identifier: MIT
#pragma once

#include "src/plugin/VornPlugin.h"

// Whether the object's bundle declares the MIME type, or the extension of the file name (what
// stands after its last dot). Either text may be empty or null.
bool IsDeclared(VornPlugin& object, const char* mimeType, const char* fileName);

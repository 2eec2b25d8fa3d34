// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

// The pixels of a graphics world or a window as the copying operations take them: they know a
// pixel map from a bit map by its row bytes.
inline const BitMap* MapOf(CGrafPtr port)
{
    return reinterpret_cast<const BitMap*>(*GetGWorldPixMap(port));
}

// SPDX-License-Identifier: MIT
//
// Calls for a host that wants to hear nothing of its objects.
#pragma once

#include "src/plugin/VornPluginABI.h"

inline OSErr IgnoreRect(VornPlugin*, const Rect*)
{
    return 0;
}
inline OSErr IgnoreError(VornPlugin*, OSErr)
{
    return 0;
}
inline OSErr IgnoreRows(VornPlugin*, SInt16, SInt16)
{
    return 0;
}

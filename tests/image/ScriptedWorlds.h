// SPDX-License-Identifier: MIT
//
// Graphics worlds that do nothing but what a test tells them. A test program that links this file
// has them in place of the toolbox's; every call is kept, with what it was given.
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

#include <string>
#include <vector>

namespace test
{

struct ScriptedWorlds {
    // What the calls answer.
    OSErr newGWorldResult = 0;
    bool locks = true;
    GWorldFlags pixelsState = 0x80;
    Rect portBounds = {1, 2, 3, 4};
    SInt32 rowBytes = 0;
    SInt32 colorIndex = 0;

    // What they were given, in order.
    std::vector<std::string> calls;

    // The only new world, its pixel map, and what is current when a test starts.
    static GWorldPtr TheWorld();
    static PixMapHandle ThePixels();
    static CGrafPtr ThePortBefore();
    static GDHandle TheDeviceBefore();
};

// The script in force, and a fresh one.
ScriptedWorlds& Worlds();
void ResetWorlds();

} // namespace test

// SPDX-License-Identifier: MIT
//
// Graphics worlds without pixels. A test program that links this file has it in place of the
// toolbox's own QuickDraw and Drag Manager; every call is kept, with its arguments, in the probe,
// which also makes calls fail. Worlds are "world1", "world2" in the order of their making; the
// window's port is "page".
#pragma once

#include "toolbox/drag/Drag.h"
#include "toolbox/quickdraw/Pictures.h"
#include "toolbox/quickdraw/QDOffscreen.h"

#include <deque>
#include <string>

struct CGrafPort {
    int number = 0; // 0: the page
    PixMap map{};
    PixMapPtr master = nullptr;
    GWorldFlags state = 0;
    bool alive = true;
};

namespace test
{

struct ScriptedGraphics {
    ScriptedGraphics();
    ScriptedGraphics(const ScriptedGraphics&) = delete;
    ScriptedGraphics& operator=(const ScriptedGraphics&) = delete;

    CGrafPtr Page() { return &ports.front(); }
    // The nth world made, from 1.
    GWorldPtr World(int number) { return &ports.at(static_cast<std::size_t>(number)); }
    // A world that no call has made.
    GWorldPtr NewWorld(const Rect& bounds, SInt16 depth);
    int WorldsAlive() const;
    bool AnyLocked() const;

    std::deque<CGrafPort> ports;
    CGrafPtr current = nullptr;
    Point pageOnScreen{};
    static PicHandle ThePicture();
};

// The script in force, and a fresh one.
ScriptedGraphics& Graphics();
void ResetGraphics();

} // namespace test

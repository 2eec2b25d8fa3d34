// SPDX-License-Identifier: MIT
//
// What stands behind a port: pixels in ordinary memory and the state of drawing into them.
#pragma once

#include "toolbox/quickdraw/Region.h"

#include <cstdlib>
#include <memory>

struct CGrafPort {
    struct FreeDeleter {
        void operator()(UInt8* block) const { std::free(block); }
    };

    Rect bounds{};         // in the port's own coordinates
    Point placeOnScreen{}; // of the port's own 0,0
    bool isWindow = false;
    SInt32 rowBytes = 0; // a multiple of 64
    std::unique_ptr<UInt8, FreeDeleter> pixels;
    MacRegion clip;
    MacRegion dirty; // what was drawn to since the host last looked
};

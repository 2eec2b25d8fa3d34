// SPDX-License-Identifier: MIT
//
// What stands behind a port: pixels in ordinary memory and the state of drawing into them.
#pragma once

#include "toolbox/quickdraw/Copying.h"
#include "toolbox/quickdraw/DirtyRegion.h"
#include "toolbox/quickdraw/PictureRecorder.h"
#include "toolbox/quickdraw/PixelMemory.h"
#include "toolbox/quickdraw/QDOffscreen.h"
#include "toolbox/quickdraw/Region.h"

#include <memory>

struct GDeviceRecord {
    GDeviceRecord* master = nullptr; // the device handle is the address of this
    CGrafPort* port = nullptr;
};

namespace toolbox
{

inline constexpr RGBColor kBlackColor = {0, 0, 0};
inline constexpr RGBColor kWhiteColor = {0xFFFF, 0xFFFF, 0xFFFF};

// A port's pixel map. Its handle is the address of `master`, which must stay the first member.
struct PortPixMap {
    PixMapPtr master = nullptr;
    PixMap map{};
    GWorldFlags state = 0;
};

} // namespace toolbox

struct CGrafPort {
    Rect bounds{};         // in the port's own coordinates
    Point placeOnScreen{}; // of the port's own 0,0
    bool isWindow = false;
    SInt32 rowBytes = 0;
    toolbox::PixelMemory pixels;
    toolbox::PortPixMap pixMap; // the same pixels, as callers see them
    GDeviceRecord device;       // a graphics world's own
    RGBColor foreground = toolbox::kBlackColor;
    RGBColor background = toolbox::kWhiteColor;
    MacRegion clip;
    toolbox::DirtyRegion dirty; // what was drawn to since the host last looked; of windows only
    std::unique_ptr<toolbox::PictureRecorder> recorder; // null if no picture is open
};

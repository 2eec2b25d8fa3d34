// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Port.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/PixMaps.h"
#include "toolbox/threads/ThreadGlobals.h"

#include <memory>
#include <new>

using toolbox::Announce;
using toolbox::CurrentThreadGlobals;

namespace
{

constexpr int kWindowDepth = 32;
constexpr SInt32 kRowAlignment = 64;

// A window as wide as all coordinates does not fit its own coordinates from 0 on.
bool IsWindowRect(const Rect& rect)
{
    return !toolbox::IsEmptyRect(rect) && rect.right - rect.left <= INT16_MAX &&
           rect.bottom - rect.top <= INT16_MAX;
}

} // namespace

OSErr CreateWindowPort(const Rect* bounds, CGrafPtr* port)
{
    *port = nullptr;
    if (const OSErr err = Announce("CreateWindowPort"); err != 0) {
        return err;
    }
    if (!IsWindowRect(*bounds)) {
        return paramErr;
    }
    std::unique_ptr<CGrafPort> made(new (std::nothrow) CGrafPort);
    if (made == nullptr) {
        return memFullErr;
    }
    made->bounds = {0, 0, static_cast<SInt16>(bounds->bottom - bounds->top),
                    static_cast<SInt16>(bounds->right - bounds->left)};
    made->placeOnScreen = {bounds->top, bounds->left};
    made->isWindow = true;
    toolbox::SetArea(made->clip.area, toolbox::kWidestRect);
    if (const OSErr err = toolbox::GivePixels(*made, kWindowDepth, kRowAlignment, nullptr);
        err != 0) {
        return err;
    }
    toolbox::CountInLedger(kLivePorts, 1);
    *port = made.release();
    return noErr;
}

void DisposeWindowPort(CGrafPtr port)
{
    Announce("DisposeWindowPort");
    if (port == nullptr) {
        return;
    }
    if (CurrentThreadGlobals().port == port) {
        CurrentThreadGlobals().port = nullptr;
    }
    toolbox::TakePixels(*port);
    delete port;
    toolbox::CountInLedger(kLivePorts, -1);
}

UInt8* GetPortPixels(CGrafPtr port, SInt32* rowBytes)
{
    Announce("GetPortPixels");
    *rowBytes = port->rowBytes;
    return port->pixels.Bytes();
}

Boolean TakeDirtyRegion(CGrafPtr port, RgnHandle region)
{
    Announce("TakeDirtyRegion");
    return port->dirty.Take(region == nullptr ? nullptr : &(*region)->area);
}

void GetPort(CGrafPtr* port)
{
    Announce("GetPort");
    *port = CurrentThreadGlobals().port;
}

void SetPort(CGrafPtr port)
{
    Announce("SetPort");
    CurrentThreadGlobals().port = port;
}

void GetGWorld(CGrafPtr* port, GDHandle* device)
{
    Announce("GetGWorld");
    *port = CurrentThreadGlobals().port;
    *device = CurrentThreadGlobals().device;
}

void SetGWorld(CGrafPtr port, GDHandle device)
{
    Announce("SetGWorld");
    CurrentThreadGlobals().port = port;
    CurrentThreadGlobals().device =
        port != nullptr && !port->isWindow ? &port->device.master : device;
}

Rect* GetPortBounds(CGrafPtr port, Rect* bounds)
{
    Announce("GetPortBounds");
    *bounds = port->bounds;
    return bounds;
}

WindowRef GetWindowFromPort(CGrafPtr port)
{
    const OSErr err = Announce("GetWindowFromPort");
    return err == 0 && port != nullptr && port->isWindow ? port : nullptr;
}

void LocalToGlobal(Point* point)
{
    Announce("LocalToGlobal");
    if (const CGrafPort* port = CurrentThreadGlobals().port) {
        point->v = static_cast<SInt16>(point->v + port->placeOnScreen.v);
        point->h = static_cast<SInt16>(point->h + port->placeOnScreen.h);
    }
}

void GetClip(RgnHandle region)
{
    if (Announce("GetClip") == 0 && CurrentThreadGlobals().port != nullptr) {
        pixman_region32_copy(&(*region)->area, &CurrentThreadGlobals().port->clip.area);
    }
}

void SetClip(RgnHandle region)
{
    if (Announce("SetClip") == 0 && CurrentThreadGlobals().port != nullptr) {
        pixman_region32_copy(&CurrentThreadGlobals().port->clip.area, &(*region)->area);
    }
}

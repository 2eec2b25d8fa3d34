// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Port.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/PixMaps.h"
#include "toolbox/quickdraw/PortRegistry.h"
#include "toolbox/threads/ThreadGlobals.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

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

Rect OwnBounds(const Rect& onScreen)
{
    return {0, 0, static_cast<SInt16>(onScreen.bottom - onScreen.top),
            static_cast<SInt16>(onScreen.right - onScreen.left)};
}

void CopyCommonPixels(const CGrafPort& from, CGrafPort& to)
{
    constexpr size_t kBytesPerPixel = 4;
    const auto rows = std::min(from.bounds.bottom, to.bounds.bottom);
    const size_t bytes =
        static_cast<size_t>(std::min(from.bounds.right, to.bounds.right)) * kBytesPerPixel;
    for (ptrdiff_t v = 0; v < rows; ++v) {
        std::memcpy(to.pixels.Bytes() + v * to.rowBytes, from.pixels.Bytes() + v * from.rowBytes,
                    bytes);
    }
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
    made->bounds = OwnBounds(*bounds);
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

OSErr ResizeWindowPort(CGrafPtr port, const Rect* bounds)
{
    if (const OSErr err = Announce("ResizeWindowPort"); err != 0) {
        return err;
    }
    if (!IsWindowRect(*bounds)) {
        return paramErr;
    }
    CGrafPort other;
    other.bounds = OwnBounds(*bounds);
    if (const OSErr err = toolbox::GivePixels(other, kWindowDepth, kRowAlignment, nullptr);
        err != 0) {
        return err;
    }
    CopyCommonPixels(*port, other);
    std::swap(port->bounds, other.bounds);
    std::swap(port->rowBytes, other.rowBytes);
    std::swap(port->pixMap.map, other.pixMap.map);
    port->pixels.Swap(other.pixels);
    port->placeOnScreen = {bounds->top, bounds->left};
    port->dirty.Add(port->bounds);
    toolbox::RegisterPort(*port); // there is an entry for these pixels: it cannot fail
    toolbox::UnregisterPort(other);
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

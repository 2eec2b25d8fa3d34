// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/QDOffscreen.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/Palette.h"
#include "toolbox/quickdraw/PixMaps.h"
#include "toolbox/quickdraw/PixelView.h"
#include "toolbox/threads/ThreadGlobals.h"

#include <memory>
#include <new>

using toolbox::Announce;

namespace toolbox
{
namespace
{

constexpr SInt32 kRowAlignment = 4;
constexpr int kDefaultDepth = 32;

PortPixMap* PixMapOfPort(PixMapHandle pixels)
{
    return reinterpret_cast<PortPixMap*>(pixels);
}

OSErr MakeWorld(CGrafPort& world, int depth, const Rect& bounds, CTabHandle colors)
{
    world.bounds = bounds;
    SetArea(world.clip.area, kWidestRect);
    CTabHandle table = nullptr;
    if (depth <= 8) {
        table = colors == nullptr ? MakeDefaultColorTable(depth) : CopyColorTable(colors);
        if (table == nullptr) {
            return memFullErr;
        }
    }
    const OSErr err = GivePixels(world, depth, kRowAlignment, table);
    if (err != noErr) {
        DisposeHandle(reinterpret_cast<Handle>(table));
    }
    return err;
}

} // namespace
} // namespace toolbox

OSErr NewGWorld(GWorldPtr* world, SInt16 pixelDepth, const Rect* bounds, CTabHandle colors,
                GDHandle device, GWorldFlags)
{
    *world = nullptr;
    if (const OSErr err = Announce("NewGWorld"); err != noErr) {
        return err;
    }
    const int depth = pixelDepth == 0 ? toolbox::kDefaultDepth : pixelDepth;
    if (!toolbox::IsPixelDepth(depth) || toolbox::IsEmptyRect(*bounds) || device != nullptr) {
        return paramErr;
    }
    std::unique_ptr<CGrafPort> made(new (std::nothrow) CGrafPort);
    if (made == nullptr) {
        return memFullErr;
    }
    if (const OSErr err = toolbox::MakeWorld(*made, depth, *bounds, colors); err != noErr) {
        return err;
    }
    toolbox::CountInLedger(kLiveGWorlds, 1);
    *world = made.release();
    return noErr;
}

void DisposeGWorld(GWorldPtr world)
{
    Announce("DisposeGWorld");
    if (world == nullptr || world->isWindow) {
        return;
    }
    toolbox::ThreadGlobals& current = toolbox::CurrentThreadGlobals();
    if (current.port == world) {
        current.port = nullptr;
    }
    if (current.device == &world->device.master) {
        current.device = nullptr;
    }
    toolbox::TakePixels(*world);
    delete world;
    toolbox::CountInLedger(kLiveGWorlds, -1);
}

PixMapHandle GetGWorldPixMap(GWorldPtr world)
{
    Announce("GetGWorldPixMap");
    return world == nullptr ? nullptr : &world->pixMap.master;
}

Boolean LockPixels(PixMapHandle pixels)
{
    if (Announce("LockPixels") != noErr || pixels == nullptr) {
        return false;
    }
    toolbox::PixMapOfPort(pixels)->state |= pixelsLocked;
    return true;
}

void UnlockPixels(PixMapHandle pixels)
{
    Announce("UnlockPixels");
    if (pixels != nullptr) {
        toolbox::PixMapOfPort(pixels)->state &= ~GWorldFlags{pixelsLocked};
    }
}

GWorldFlags GetPixelsState(PixMapHandle pixels)
{
    Announce("GetPixelsState");
    return pixels == nullptr ? 0 : toolbox::PixMapOfPort(pixels)->state;
}

void SetPixelsState(PixMapHandle pixels, GWorldFlags state)
{
    Announce("SetPixelsState");
    if (pixels != nullptr) {
        toolbox::PixMapOfPort(pixels)->state = state & (pixelsLocked | pixelsPurgeable);
    }
}

Ptr GetPixBaseAddr(PixMapHandle pixels)
{
    Announce("GetPixBaseAddr");
    return pixels == nullptr ? nullptr : (*pixels)->baseAddr;
}

SInt32 GetPixRowBytes(PixMapHandle pixels)
{
    Announce("GetPixRowBytes");
    return pixels == nullptr ? 0 : toolbox::RowBytesOf(**pixels);
}

// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedGraphics.h"

#include "tests/support/RectText.h"
#include "tests/support/ToolboxProbe.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace test
{
namespace
{

std::unique_ptr<ScriptedGraphics> gGraphics;
Picture gPicture;
Picture* gPictureMaster = &gPicture;

std::string Name(CGrafPtr port)
{
    if (port == nullptr) {
        return "none";
    }
    return port->number == 0 ? "page" : "world" + std::to_string(port->number);
}

std::string ColorText(const RGBColor* color)
{
    std::ostringstream text;
    text << std::hex << color->red << ',' << color->green << ',' << color->blue;
    return text.str();
}

std::string RegionText(RgnHandle region)
{
    return region == nullptr ? "everywhere" : "region";
}

std::string TypeText(OSType type)
{
    return {static_cast<char>(type >> 24), static_cast<char>(type >> 16),
            static_cast<char>(type >> 8), static_cast<char>(type)};
}

CGrafPtr PortOf(const void* map)
{
    for (CGrafPort& port : Graphics().ports) {
        if (map == &port.map || map == &port.master) {
            return &port;
        }
    }
    return nullptr;
}

std::string NameOfMap(const BitMap* map)
{
    return Name(PortOf(map));
}

template <typename... Arguments>
OSErr Called(const char* name, const Arguments&... arguments)
{
    std::ostringstream call;
    call << name;
    ((call << ' ' << arguments), ...);
    return ToolboxProbe::Current() != nullptr ? ToolboxProbe::Current()->Note(call.str())
                                              : OSErr{0};
}

SInt16 MapCoordinate(SInt16 value, SInt16 from, SInt16 fromEnd, SInt16 to, SInt16 toEnd)
{
    const int fromSize = fromEnd - from;
    return static_cast<SInt16>(fromSize == 0 ? to : to + (value - from) * (toEnd - to) / fromSize);
}

} // namespace

ScriptedGraphics::ScriptedGraphics()
{
    ports.emplace_back();
    ports.front().map.bounds = {0, 0, 400, 600};
    ports.front().master = &ports.front().map;
    current = &ports.front();
}

GWorldPtr ScriptedGraphics::NewWorld(const Rect& bounds, SInt16 depth)
{
    CGrafPort& port = ports.emplace_back();
    port.number = static_cast<int>(ports.size()) - 1;
    port.map.bounds = bounds;
    port.map.pixelSize = depth;
    port.master = &port.map;
    return &port;
}

int ScriptedGraphics::WorldsAlive() const
{
    return static_cast<int>(std::count_if(ports.begin(), ports.end(), [](const CGrafPort& port) {
        return port.number != 0 && port.alive;
    }));
}

bool ScriptedGraphics::AnyLocked() const
{
    return std::any_of(ports.begin(), ports.end(),
                       [](const CGrafPort& port) { return (port.state & pixelsLocked) != 0; });
}

PicHandle ScriptedGraphics::ThePicture()
{
    return &gPictureMaster;
}

ScriptedGraphics& Graphics()
{
    if (!gGraphics) {
        ResetGraphics();
    }
    return *gGraphics;
}

void ResetGraphics()
{
    gGraphics = std::make_unique<ScriptedGraphics>();
}

} // namespace test

using test::Called;
using test::ColorText;
using test::Graphics;
using test::Name;
using test::NameOfMap;
using test::PortOf;
using test::RegionText;
using test::Text;
using test::TypeText;

void GetPort(CGrafPtr* port)
{
    Called("GetPort");
    *port = Graphics().current;
}

void SetPort(CGrafPtr port)
{
    Called("SetPort", Name(port));
    Graphics().current = port;
}

void GetGWorld(CGrafPtr* port, GDHandle* device)
{
    Called("GetGWorld");
    *port = Graphics().current;
    *device = nullptr;
}

void SetGWorld(CGrafPtr port, GDHandle)
{
    Called("SetGWorld", Name(port));
    Graphics().current = port;
}

Rect* GetPortBounds(CGrafPtr port, Rect* bounds)
{
    *bounds = port->map.bounds;
    return bounds;
}

void ForeColor(SInt32 color)
{
    Called("ForeColor", Name(Graphics().current), color);
}

void BackColor(SInt32 color)
{
    Called("BackColor", Name(Graphics().current), color);
}

void RGBForeColor(const RGBColor* color)
{
    Called("RGBForeColor", Name(Graphics().current), ColorText(color));
}

void RGBBackColor(const RGBColor* color)
{
    Called("RGBBackColor", Name(Graphics().current), ColorText(color));
}

void EraseRect(const Rect* rect)
{
    Called("EraseRect", Name(Graphics().current), Text(*rect));
}

SInt32 GetCTSeed(void)
{
    Called("GetCTSeed");
    return 4711;
}

void MapRect(Rect* rect, const Rect* from, const Rect* to)
{
    using test::MapCoordinate;
    *rect = {MapCoordinate(rect->top, from->top, from->bottom, to->top, to->bottom),
             MapCoordinate(rect->left, from->left, from->right, to->left, to->right),
             MapCoordinate(rect->bottom, from->top, from->bottom, to->top, to->bottom),
             MapCoordinate(rect->right, from->left, from->right, to->left, to->right)};
}

void LocalToGlobal(Point* point)
{
    Called("LocalToGlobal", Name(Graphics().current));
    point->v = static_cast<SInt16>(point->v + Graphics().pageOnScreen.v);
    point->h = static_cast<SInt16>(point->h + Graphics().pageOnScreen.h);
}

void CopyBits(const BitMap* srcBits, const BitMap* dstBits, const Rect* srcRect,
              const Rect* dstRect, SInt16 mode, RgnHandle maskRgn)
{
    Called("CopyBits", NameOfMap(srcBits), Text(*srcRect), NameOfMap(dstBits), Text(*dstRect), mode,
           RegionText(maskRgn));
}

void CopyMask(const BitMap* srcBits, const BitMap* maskBits, const BitMap* dstBits,
              const Rect* srcRect, const Rect* maskRect, const Rect* dstRect)
{
    Called("CopyMask", NameOfMap(srcBits), Text(*srcRect), NameOfMap(maskBits), Text(*maskRect),
           NameOfMap(dstBits), Text(*dstRect));
}

void CopyDeepMask(const BitMap* srcBits, const BitMap* maskBits, const BitMap* dstBits,
                  const Rect* srcRect, const Rect* maskRect, const Rect* dstRect, SInt16 mode,
                  RgnHandle maskRgn)
{
    Called("CopyDeepMask", NameOfMap(srcBits), Text(*srcRect), NameOfMap(maskBits), Text(*maskRect),
           NameOfMap(dstBits), Text(*dstRect), mode, RegionText(maskRgn));
}

OSErr NewGWorld(GWorldPtr* world, SInt16 pixelDepth, const Rect* bounds, CTabHandle colors,
                GDHandle, GWorldFlags flags)
{
    *world = nullptr;
    const OSErr err = Called("NewGWorld", pixelDepth, Text(*bounds),
                             colors != nullptr ? "colors" : "no-colors", flags);
    if (err == 0) {
        *world = Graphics().NewWorld(*bounds, pixelDepth);
    }
    return err;
}

void DisposeGWorld(GWorldPtr world)
{
    Called("DisposeGWorld", Name(world));
    EXPECT_TRUE(world->alive) << Name(world) << " is disposed of twice";
    world->alive = false;
}

PixMapHandle GetGWorldPixMap(GWorldPtr world)
{
    return &world->master;
}

Boolean LockPixels(PixMapHandle pixels)
{
    if (Called("LockPixels", Name(PortOf(pixels))) != 0) {
        return false;
    }
    PortOf(pixels)->state |= pixelsLocked;
    return true;
}

void UnlockPixels(PixMapHandle pixels)
{
    Called("UnlockPixels", Name(PortOf(pixels)));
    PortOf(pixels)->state &= ~GWorldFlags{pixelsLocked};
}

GWorldFlags GetPixelsState(PixMapHandle pixels)
{
    Called("GetPixelsState", Name(PortOf(pixels)));
    return PortOf(pixels)->state;
}

void SetPixelsState(PixMapHandle pixels, GWorldFlags state)
{
    Called("SetPixelsState", Name(PortOf(pixels)), state);
    PortOf(pixels)->state = state;
}

PicHandle OpenPicture(const Rect* frame)
{
    return Called("OpenPicture", Name(Graphics().current), Text(*frame)) == 0
               ? test::ScriptedGraphics::ThePicture()
               : nullptr;
}

void ClosePicture(void)
{
    Called("ClosePicture");
}

OSErr AddDragItemFlavor(DragRef, DragItemRef item, FlavorType type, const void* data, Size size,
                        FlavorFlags flags)
{
    return Called("AddDragItemFlavor", item, TypeText(type), data != nullptr ? "data" : "promised",
                  size, flags);
}

OSErr SetDragImage(DragRef, PixMapHandle pixels, RgnHandle region, Point offset,
                   DragImageFlags flags)
{
    return Called("SetDragImage", Name(PortOf(pixels)), RegionText(region), offset.v, offset.h,
                  flags);
}

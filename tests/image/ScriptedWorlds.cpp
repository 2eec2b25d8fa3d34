// SPDX-License-Identifier: MIT
#include "tests/image/ScriptedWorlds.h"

#include "tests/support/RectText.h"

#include <sstream>

namespace test
{
namespace
{

ScriptedWorlds gWorlds;
// Addresses that nothing looks behind.
char gAddresses[4];

std::string NameOf(const void* address)
{
    if (address == nullptr)
        return "null";
    if (address == ScriptedWorlds::TheWorld())
        return "world";
    if (address == ScriptedWorlds::ThePixels())
        return "pixels";
    if (address == ScriptedWorlds::ThePortBefore())
        return "portBefore";
    return address == ScriptedWorlds::TheDeviceBefore() ? "deviceBefore" : "other";
}

template <class... Parts>
void Note(const Parts&... parts)
{
    std::ostringstream call;
    (call << ... << parts);
    gWorlds.calls.push_back(call.str());
}

} // namespace

GWorldPtr ScriptedWorlds::TheWorld()
{
    return reinterpret_cast<GWorldPtr>(&gAddresses[0]);
}

PixMapHandle ScriptedWorlds::ThePixels()
{
    return reinterpret_cast<PixMapHandle>(&gAddresses[1]);
}

CGrafPtr ScriptedWorlds::ThePortBefore()
{
    return reinterpret_cast<CGrafPtr>(&gAddresses[2]);
}

GDHandle ScriptedWorlds::TheDeviceBefore()
{
    return reinterpret_cast<GDHandle>(&gAddresses[3]);
}

ScriptedWorlds& Worlds()
{
    return gWorlds;
}

void ResetWorlds()
{
    gWorlds = ScriptedWorlds{};
}

} // namespace test

using test::NameOf;
using test::Note;
using test::Text;
using test::Worlds;

OSErr NewGWorld(GWorldPtr* world, SInt16 pixelDepth, const Rect* bounds, CTabHandle colors,
                GDHandle device, GWorldFlags flags)
{
    Note("NewGWorld depth ", pixelDepth, " bounds ", Text(*bounds), " colors ",
         colors == nullptr ? "null" : "given", " device ", NameOf(device), " flags ", flags);
    *world = Worlds().newGWorldResult == 0 ? test::ScriptedWorlds::TheWorld() : nullptr;
    return Worlds().newGWorldResult;
}

void DisposeGWorld(GWorldPtr world)
{
    Note("DisposeGWorld ", NameOf(world));
}

void GetGWorld(CGrafPtr* port, GDHandle* device)
{
    Note("GetGWorld");
    *port = test::ScriptedWorlds::ThePortBefore();
    *device = test::ScriptedWorlds::TheDeviceBefore();
}

void SetGWorld(CGrafPtr port, GDHandle device)
{
    Note("SetGWorld ", NameOf(port), ' ', NameOf(device));
}

PixMapHandle GetGWorldPixMap(GWorldPtr world)
{
    Note("GetGWorldPixMap ", NameOf(world));
    return test::ScriptedWorlds::ThePixels();
}

GWorldFlags GetPixelsState(PixMapHandle pixels)
{
    Note("GetPixelsState ", NameOf(pixels));
    return Worlds().pixelsState;
}

void SetPixelsState(PixMapHandle pixels, GWorldFlags state)
{
    Note("SetPixelsState ", NameOf(pixels), ' ', state);
}

Boolean LockPixels(PixMapHandle pixels)
{
    Note("LockPixels ", NameOf(pixels));
    return Worlds().locks;
}

void BackColor(SInt32 color)
{
    Note("BackColor ", color);
}

Rect* GetPortBounds(CGrafPtr port, Rect* bounds)
{
    Note("GetPortBounds ", NameOf(port));
    *bounds = Worlds().portBounds;
    return bounds;
}

void EraseRect(const Rect* rect)
{
    Note("EraseRect ", Text(*rect));
}

Ptr GetPixBaseAddr(PixMapHandle pixels)
{
    return (*pixels)->baseAddr;
}

SInt32 GetPixRowBytes(PixMapHandle)
{
    return Worlds().rowBytes;
}

SInt32 Color2Index(const RGBColor* color)
{
    Note("Color2Index ", color->red, ' ', color->green, ' ', color->blue);
    return Worlds().colorIndex;
}

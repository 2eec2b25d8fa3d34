// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Colors.h"

#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/ColorSearch.h"
#include "toolbox/quickdraw/Drawing.h"
#include "toolbox/quickdraw/Port.h"
#include "toolbox/threads/ThreadGlobals.h"

using toolbox::Announce;
using toolbox::CurrentThreadGlobals;

namespace toolbox
{
namespace
{

const RGBColor& ColorOfName(SInt32 name)
{
    return name == whiteColor ? kWhiteColor : kBlackColor;
}

} // namespace

SInt32 NextColorTableSeed()
{
    constexpr SInt32 kLastSystemSeed = 1023; // those up to here name the platform's own tables
    static SInt32 last = kLastSystemSeed;
    last = last == INT32_MAX ? kLastSystemSeed + 1 : last + 1;
    return last;
}

UInt32 PixelValueOf(const RGBColor& color, int depth, CTabHandle colors)
{
    if (depth == 16) {
        return ((color.red & 0xF800U) | ((color.green >> 5U) & 0x07C0U) |
                ((color.blue >> 10U) & 0x003EU)) >>
               1U;
    }
    const Color wanted = ColorFromRGB(color);
    return depth == 32 ? wanted : SearchOf(PaletteOf(colors, depth), depth).Nearest(wanted);
}

} // namespace toolbox

void ForeColor(SInt32 color)
{
    Announce("ForeColor");
    if (CGrafPort* const port = CurrentThreadGlobals().port) {
        port->foreground = toolbox::ColorOfName(color);
    }
}

void BackColor(SInt32 color)
{
    Announce("BackColor");
    if (CGrafPort* const port = CurrentThreadGlobals().port) {
        port->background = toolbox::ColorOfName(color);
    }
}

void RGBForeColor(const RGBColor* color)
{
    Announce("RGBForeColor");
    if (CGrafPort* const port = CurrentThreadGlobals().port) {
        port->foreground = *color;
    }
}

void RGBBackColor(const RGBColor* color)
{
    Announce("RGBBackColor");
    if (CGrafPort* const port = CurrentThreadGlobals().port) {
        port->background = *color;
    }
}

void EraseRect(const Rect* rect)
{
    Announce("EraseRect");
    if (CGrafPort* const port = CurrentThreadGlobals().port) {
        toolbox::PaintRect(*port, *rect, port->background, nullptr);
    }
}

SInt32 Color2Index(const RGBColor* color)
{
    Announce("Color2Index");
    GDHandle const device = CurrentThreadGlobals().device;
    int depth = 32;
    CTabHandle colors = nullptr;
    if (device != nullptr) {
        const PixMap& map = (*device)->port->pixMap.map;
        depth = map.pixelSize;
        colors = map.pmTable;
    }
    return static_cast<SInt32>(toolbox::PixelValueOf(*color, depth, colors));
}

SInt32 GetCTSeed(void)
{
    Announce("GetCTSeed");
    return toolbox::NextColorTableSeed();
}

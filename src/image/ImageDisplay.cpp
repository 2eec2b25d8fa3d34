// SPDX-License-Identifier: MIT
//
// VornImagePlugin's drawing.
#include "src/image/GWorldSwitch.h"
#include "src/image/GraphicsWorlds.h"
#include "src/image/KeptPort.h"
#include "src/image/MapOf.h"
#include "src/image/PixelsLock.h"
#include "src/image/PixelsStateLock.h"
#include "src/image/VornImagePlugin.h"
#include "toolbox/memory/Memory.h"

#include <memory>

namespace
{

constexpr SInt16 kCompositeDepth = 16;
constexpr SInt16 kDeepestDepth = 0; // as deep as the platform has it

struct WorldDisposer {
    using pointer = GWorldPtr;
    void operator()(GWorldPtr world) const { DisposeGWorld(world); }
};
using OwnedWorld = std::unique_ptr<GWorldPtr, WorldDisposer>;

struct TableDisposer {
    using pointer = CTabHandle;
    void operator()(CTabHandle table) const { DisposeHandle(reinterpret_cast<Handle>(table)); }
};
using OwnedTable = std::unique_ptr<CTabHandle, TableDisposer>;

Rect Offset(Rect rect, Point by)
{
    OffsetRect(&rect, by.h, by.v);
    return rect;
}

Rect MovedToOrigin(const Rect& rect)
{
    return {0, 0, static_cast<SInt16>(rect.bottom - rect.top),
            static_cast<SInt16>(rect.right - rect.left)};
}

Rect Mapped(Rect rect, const Rect& from, const Rect& to)
{
    MapRect(&rect, &from, &to);
    return rect;
}

void Copy(GWorldPtr from, const Rect& source, CGrafPtr to, const Rect& target)
{
    CopyBits(MapOf(from), MapOf(to), &source, &target, ditherCopy, nullptr);
}

void ColorsForCopying()
{
    ForeColor(blackColor);
    BackColor(whiteColor);
}

// The frame's pixels must be locked.
void CopyFrame(const VornImagePlugin::TFrame& frame, const Rect& source, CGrafPtr to,
               const Rect& target)
{
    if (!frame.maskGWorld) {
        Copy(frame.gworld, source, to, target);
        return;
    }
    const PixelsStateLock mask(frame.maskGWorld);
    if (!mask.IsLocked())
        return;
    if (frame.maskDepth == 1)
        CopyMask(MapOf(frame.gworld), MapOf(frame.maskGWorld), MapOf(to), &source, &source,
                 &target);
    else
        CopyDeepMask(MapOf(frame.gworld), MapOf(frame.maskGWorld), MapOf(to), &source, &source,
                     &target, ditherCopy, nullptr);
}

// Paints over where the frame was, in the current world: where its mask is set (everywhere without
// one) with the background, elsewhere white.
void PaintBackground(const VornImagePlugin::TFrame& frame, const Rect& source, CGrafPtr to,
                     const Rect& target, const RGBColor& background)
{
    if (!frame.maskGWorld) {
        RGBBackColor(&background);
        EraseRect(&target);
        return;
    }
    const PixelsStateLock mask(frame.maskGWorld);
    if (!mask.IsLocked())
        return;
    RGBForeColor(&background);
    BackColor(whiteColor);
    Copy(frame.maskGWorld, source, to, target);
}

// A part of a world in one of its own; null where there is no memory for it.
OwnedWorld CopyOfPart(GWorldPtr from, const Rect& part, const Rect& bounds,
                      unsigned char useTempMem)
{
    GWorldPtr copy = nullptr;
    if (MakeGWorld(&bounds, kDeepestDepth, nullptr, useTempMem, &copy) != noErr)
        return nullptr;
    Copy(from, part, copy, bounds);
    return OwnedWorld(copy);
}

bool RestoresBackground(TDisposalMethod method)
{
    return method == kDisposalRestoreBackground || method == -1;
}

} // namespace

void VornImagePlugin::Display(const Rect& area, unsigned char)
{
    DrawImage(area, (displayFlags & kVornDisplayPartialRedraw) == 0);
    hasDisplayed = 1;
}

void VornImagePlugin::GetDisplayRect(const Rect& bounds, Rect& outRect)
{
    ScaleRectWithFlags(displayFlags, displayRect, bounds, outRect);
}

void VornImagePlugin::InvalidateRow(SInt16 row)
{
    if (invalidTop == -1 || invalidTop > row)
        invalidTop = row;
    const auto end = static_cast<SInt16>(row + 1);
    if (invalidBottom == -1 || invalidBottom < end)
        invalidBottom = end;
}

void VornImagePlugin::DrawImage(const Rect& area, unsigned char full)
{
    SInt16 index = curFrame;
    if (index < 0)
        return;
    if (!renderingFinished)
        index = 0; // the others may be half done
    if (!full && !renderingFinished && invalidTop == -1 && invalidBottom == -1)
        return;
    if (index >= frames.count)
        return;
    Rect dest;
    GetDisplayRect(area, dest);
    CGrafPtr port = nullptr;
    GetPort(&port);
    if (!port)
        return;
    Rect portBounds;
    GetPortBounds(port, &portBounds);
    if (dest.top > portBounds.bottom || dest.bottom < portBounds.top)
        return;
    const TFrame* frame = frames[index];
    if (!frame)
        return;
    if (looping)
        DisplayAnimatedFrame(*frame, dest, full || index == 0);
    else
        DisplayStillFrame(*frame, dest, full);
    invalidTop = invalidBottom = -1;
}

Rect VornImagePlugin::RowsToDraw(const TFrame& frame, unsigned char full) const
{
    Rect rows{};
    frame.GetBounds(rows);
    if (!full && invalidTop != -1)
        rows.top = invalidTop;
    if (!full && invalidBottom != -1)
        rows.bottom = invalidBottom;
    return rows;
}

void VornImagePlugin::DisplayStillFrame(const TFrame& frame, const Rect& dest, unsigned char full)
{
    const KeptPort port;
    Rect bounds{};
    frame.GetBounds(bounds);
    // The position shifts what is shown, not where.
    const Rect source = Offset(RowsToDraw(frame, full), frame.displayPosition);
    const Rect target = Mapped(source, bounds, dest);
    const PixelsStateLock pixels(frame.gworld);
    if (!pixels.IsLocked())
        return;
    ColorsForCopying();
    CopyFrame(frame, source, port.Get(), target);
}

void VornImagePlugin::MakeComposite()
{
    CTabHandle table = nullptr;
    if (colorTable)
        AddWhiteToColorTable(colorTable, &table);
    const OwnedTable unused(table); // direct colours take none
    if (const OSErr err =
            MakeGWorld(&displayRect, kCompositeDepth, nullptr, usesTempMem, &compositeGWorld))
        throw err;
}

void VornImagePlugin::DisplayAnimatedFrame(const TFrame& frame, const Rect& dest,
                                           unsigned char full)
{
    const Rect frameRect = RowsToDraw(frame, full);
    const Rect placed = Offset(frameRect, frame.displayPosition);
    const Rect screen = Mapped(placed, displayRect, dest);
    if (!compositeGWorld)
        MakeComposite();
    GWorldSwitch world; // outlives the lock: unlocked first, then the former world comes back
    const PixelsLock composite(compositeGWorld);
    if (!composite.IsLocked())
        return;
    world.To(compositeGWorld);

    OwnedWorld saved;
    const Rect saveRect = MovedToOrigin(placed);
    if (frame.disposalMethod == kDisposalRestorePrevious)
        saved = CopyOfPart(compositeGWorld, placed, saveRect, usesTempMem);
    ColorsForCopying();
    {
        const PixelsStateLock pixels(frame.gworld);
        if (pixels.IsLocked())
            CopyFrame(frame, frameRect, compositeGWorld, placed);
    }
    world.Back();
    CGrafPtr port = nullptr;
    GetPort(&port);
    if (full)
        Copy(compositeGWorld, displayRect, port, dest);
    else
        Copy(compositeGWorld, placed, port, screen);

    world.To(compositeGWorld);
    if (RestoresBackground(frame.disposalMethod)) {
        constexpr RGBColor kWhite = {0xFFFF, 0xFFFF, 0xFFFF};
        PaintBackground(frame, frameRect, compositeGWorld, placed,
                        hasBackgroundColor ? backgroundColor : kWhite);
    } else if (saved) {
        Copy(saved.get(), saveRect, compositeGWorld, placed);
    }
}

// SPDX-License-Identifier: MIT
#include "src/image/GWorldSwitch.h"
#include "src/image/MapOf.h"
#include "src/image/PixelsLock.h"
#include "src/image/VornImagePlugin.h"

namespace
{

void DisposeIfAny(GWorldPtr world)
{
    if (world)
        DisposeGWorld(world);
}

void Replace(GWorldPtr& held, GWorldPtr world)
{
    if (held != world)
        DisposeIfAny(held);
    held = world;
}

} // namespace

VornImagePlugin::TFrame::TFrame(GWorldPtr world, UInt16 worldDepth, GWorldPtr mask,
                                UInt16 depthOfMask)
    : gworld(world), maskGWorld(mask), transparent(depthOfMask != 0), depth(worldDepth),
      maskDepth(depthOfMask)
{
}

VornImagePlugin::TFrame::~TFrame()
{
    DisposeIfAny(gworld);
    DisposeIfAny(maskGWorld);
}

void VornImagePlugin::TFrame::SetGWorld(GWorldPtr world)
{
    Replace(gworld, world);
}

void VornImagePlugin::TFrame::SetMaskGWorld(GWorldPtr world)
{
    Replace(maskGWorld, world);
}

void VornImagePlugin::TFrame::SetDisplayPosition(Point position)
{
    displayPosition = position;
}

void VornImagePlugin::TFrame::SetTransparency(unsigned char flag, SInt16 index)
{
    transparent = flag;
    transparentIndex = index;
}

void VornImagePlugin::TFrame::SetDelay(UInt16 hundredths)
{
    delayTicks = SInt32{hundredths} * 60 / 100;
}

void VornImagePlugin::TFrame::SetUserInput(unsigned char flag)
{
    userInput = flag;
}

void VornImagePlugin::TFrame::SetDisposalMethod(TDisposalMethod method)
{
    disposalMethod = method;
}

void VornImagePlugin::TFrame::GetBounds(Rect& bounds) const
{
    if (gworld)
        bounds = (*GetGWorldPixMap(gworld))->bounds;
}

void VornImagePlugin::TFrame::GetFramePictHandle(PicHandle* outPicture) const
{
    *outPicture = nullptr;
    if (!gworld)
        return;
    PicHandle picture = nullptr;
    {
        Rect bounds{};
        GetBounds(bounds);
        const PixelsLock pixels(gworld);
        if (!pixels.IsLocked())
            return;
        const GWorldSwitch drawing(gworld);
        picture = OpenPicture(&bounds);
        // Without a picture of our own, somebody else's may be open: not ours to draw into or
        // close.
        if (!picture)
            return;
        ForeColor(blackColor);
        BackColor(whiteColor);
        CopyBits(MapOf(gworld), MapOf(gworld), &bounds, &bounds, ditherCopy, nullptr);
        ClosePicture();
    }
    *outPicture = picture;
}

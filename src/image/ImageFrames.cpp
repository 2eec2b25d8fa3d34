// SPDX-License-Identifier: MIT
//
// VornImagePlugin's list of frames.
#include "src/image/GraphicsWorlds.h"
#include "src/image/VornImagePlugin.h"

#include <memory>
#include <new>

OSErr VornImagePlugin::AddNewFrame(const Rect& bounds, UInt16 depth, CTabHandle colors,
                                   UInt16 maskDepth, SInt16& index)
{
    const SInt16 newIndex = frameCount;
    GWorldPtr world = nullptr;
    if (const OSErr err =
            MakeGWorld(&bounds, static_cast<SInt16>(depth), colors, usesTempMem, &world))
        return err;
    GWorldPtr mask = nullptr;
    if (maskDepth != 0) {
        // On failure the frame's own world is not disposed of: the order is kept as documented.
        if (const OSErr err =
                MakeGWorld(&bounds, static_cast<SInt16>(maskDepth), nullptr, usesTempMem, &mask))
            return err;
    }
    std::unique_ptr<TFrame> frame(new (std::nothrow) TFrame(world, depth, mask, maskDepth));
    if (!frame)
        return memFullErr;
    frameCount = static_cast<SInt16>(newIndex + 1);
    frames.Append(frame.get());
    static_cast<void>(frame.release()); // the list's now
    index = newIndex;
    if (curFrame == -1)
        curFrame = 0;
    return noErr;
}

GWorldPtr VornImagePlugin::GetFrameGWorld(SInt16 index)
{
    const TFrame* frame = frames[index];
    return frame ? frame->gworld : nullptr;
}

GWorldPtr VornImagePlugin::GetFrameMaskGWorld(SInt16 index)
{
    const TFrame* frame = frames[index];
    return frame ? frame->maskGWorld : nullptr;
}

void VornImagePlugin::GetFrameBounds(SInt16 index, Rect& bounds)
{
    if (const TFrame* frame = frames[index])
        frame->GetBounds(bounds);
    else
        bounds = Rect{};
}

void VornImagePlugin::SetFrameGWorld(SInt16 index, GWorldPtr world)
{
    if (TFrame* frame = frames[index])
        frame->SetGWorld(world);
}

void VornImagePlugin::SetFrameMaskGWorld(SInt16 index, GWorldPtr world)
{
    if (TFrame* frame = frames[index])
        frame->SetMaskGWorld(world);
}

void VornImagePlugin::SetFrameDisplayPos(SInt16 index, Point position)
{
    if (TFrame* frame = frames[index])
        frame->SetDisplayPosition(position);
}

void VornImagePlugin::SetFrameTransparency(SInt16 index, unsigned char flag,
                                           SInt16 transparentIndex)
{
    if (TFrame* frame = frames[index])
        frame->SetTransparency(flag, transparentIndex);
}

void VornImagePlugin::SetFrameDelay(SInt16 index, UInt16 hundredths)
{
    if (TFrame* frame = frames[index])
        frame->SetDelay(hundredths);
}

void VornImagePlugin::SetFrameUserInput(SInt16 index, unsigned char flag)
{
    if (TFrame* frame = frames[index])
        frame->SetUserInput(flag);
}

void VornImagePlugin::SetFrameDisposalMethod(SInt16 index, TDisposalMethod method)
{
    if (TFrame* frame = frames[index])
        frame->SetDisposalMethod(method);
}

// SPDX-License-Identifier: MIT
//
// VornImagePlugin's way through its frames: by the clock and by the user's clicks.
#include "src/image/VornImagePlugin.h"
#include "toolbox/events/Events.h"

void VornImagePlugin::Idle(const Rect& area, unsigned char)
{
    const UInt32 now = TickCount();
    if (!hasDisplayed || !renderingFinished || !looping || animationDone)
        return;
    if (now < nextFrameTime)
        return;
    DrawImage(area, true);
    ScheduleNextFrame();
    curFrame = static_cast<SInt16>(curFrame + 1);
    if (curFrame != frameCount)
        return;
    curFrame = 0;
    loopsDone = static_cast<SInt16>(loopsDone + 1);
    if (loopsDone == loopCount)
        animationDone = 1;
}

// The delay counts from the end of drawing, so that a slow machine shows every frame as long.
void VornImagePlugin::ScheduleNextFrame()
{
    const UInt32 now = TickCount();
    const bool isCounted = curFrame >= 0 && curFrame < frameCount;
    const TFrame* frame = isCounted ? frames[curFrame] : nullptr;
    nextFrameTime = now + static_cast<UInt32>(frame ? frame->delayTicks : 0);
}

Boolean VornImagePlugin::HandleClick(const Rect& area, const EventRecord&)
{
    if (curFrame < 0 || curFrame >= frameCount)
        return false;
    const TFrame* frame = frames[curFrame];
    if (!frame || !frame->userInput)
        return false;
    curFrame = static_cast<SInt16>(curFrame + 1);
    if (curFrame == frameCount)
        curFrame = 0;
    DrawImage(area, true);
    ScheduleNextFrame();
    return true;
}

// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Pictures.h"

#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/PictureRecorder.h"
#include "toolbox/quickdraw/Port.h"
#include "toolbox/threads/ThreadGlobals.h"

using toolbox::Announce;
using toolbox::CurrentThreadGlobals;
using toolbox::PictureRecorder;

PicHandle OpenPicture(const Rect* frame)
{
    CGrafPort* const port = CurrentThreadGlobals().port;
    if (Announce("OpenPicture") != 0 || port == nullptr || port->recorder != nullptr) {
        return nullptr;
    }
    port->recorder = PictureRecorder::Begin(*frame);
    if (port->recorder == nullptr) {
        return nullptr;
    }
    port->recorder->ClipTo(port->clip.area);
    return port->recorder->ThePicture();
}

void ClosePicture(void)
{
    Announce("ClosePicture");
    CGrafPort* const port = CurrentThreadGlobals().port;
    if (toolbox::IsRecording(port)) {
        port->recorder->Finish();
        port->recorder.reset();
    }
}

void KillPicture(PicHandle picture)
{
    Announce("KillPicture");
    CGrafPort* const port = CurrentThreadGlobals().port;
    if (toolbox::IsRecording(port) && port->recorder->ThePicture() == picture) {
        port->recorder.reset();
    }
    DisposeHandle(reinterpret_cast<Handle>(picture));
}

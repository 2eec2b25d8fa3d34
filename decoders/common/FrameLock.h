// SPDX-License-Identifier: MIT
#pragma once

#include "src/image/PixelWriting.h"
#include "toolbox/Errors.h"
#include "toolbox/quickdraw/QDOffscreen.h"

// The pixels of a graphics world, kept in place and ready for writing for the length of a scope.
// Drawing in the meantime leaves them locked. Throws memFullErr if there are no pixels.
class FrameLock
{
public:
    explicit FrameLock(GWorldPtr world) : pixels_(GetGWorldPixMap(world))
    {
        if (!LockPixels(pixels_))
            throw OSErr{memFullErr};
        PrepareSetPixel(pixels_, &state_);
    }
    ~FrameLock() { UnlockPixels(pixels_); }
    FrameLock(const FrameLock&) = delete;
    FrameLock& operator=(const FrameLock&) = delete;

    PixelWriteState& State() { return state_; }

private:
    const PixMapHandle pixels_;
    PixelWriteState state_{};
};

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

// Locks a graphics world's pixels for the length of a scope; the state they had comes back on every
// way out, so that pixels which a decoder keeps locked stay so. A world that there is not (null)
// cannot be locked.
class PixelsStateLock
{
public:
    explicit PixelsStateLock(GWorldPtr world)
        : pixels_(world ? GetGWorldPixMap(world) : nullptr),
          state_(pixels_ ? GetPixelsState(pixels_) : 0), locked_(pixels_ && LockPixels(pixels_))
    {
    }
    ~PixelsStateLock()
    {
        if (pixels_)
            SetPixelsState(pixels_, state_);
    }
    PixelsStateLock(const PixelsStateLock&) = delete;
    PixelsStateLock& operator=(const PixelsStateLock&) = delete;

    bool IsLocked() const { return locked_; }

private:
    const PixMapHandle pixels_;
    const GWorldFlags state_;
    const bool locked_;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

// Locks a graphics world's pixels for the length of a scope and unlocks them on every way out. A
// world that there is not (null) cannot be locked.
class PixelsLock
{
public:
    explicit PixelsLock(GWorldPtr world)
        : pixels_(world ? GetGWorldPixMap(world) : nullptr), locked_(pixels_ && LockPixels(pixels_))
    {
    }
    ~PixelsLock()
    {
        if (locked_)
            UnlockPixels(pixels_);
    }
    PixelsLock(const PixelsLock&) = delete;
    PixelsLock& operator=(const PixelsLock&) = delete;

    bool IsLocked() const { return locked_; }

private:
    const PixMapHandle pixels_;
    const bool locked_;
};

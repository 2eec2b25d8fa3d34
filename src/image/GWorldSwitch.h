// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

// Makes graphics worlds current; the one that was current comes back when told, and on every way
// out of the scope.
class GWorldSwitch
{
public:
    GWorldSwitch() = default;
    explicit GWorldSwitch(GWorldPtr world) { To(world); }
    ~GWorldSwitch() { Back(); }
    GWorldSwitch(const GWorldSwitch&) = delete;
    GWorldSwitch& operator=(const GWorldSwitch&) = delete;

    void To(GWorldPtr world)
    {
        if (!switched_)
            GetGWorld(&formerPort_, &formerDevice_);
        switched_ = true;
        SetGWorld(world, nullptr);
    }
    void Back()
    {
        if (switched_)
            SetGWorld(formerPort_, formerDevice_);
        switched_ = false;
    }

private:
    bool switched_ = false;
    CGrafPtr formerPort_ = nullptr;
    GDHandle formerDevice_ = nullptr;
};

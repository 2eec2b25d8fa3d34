// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"

// Makes a port current for the length of a scope; the former one comes back on every way out.
class PortSwitch
{
public:
    explicit PortSwitch(CGrafPtr port)
    {
        GetPort(&former_);
        SetPort(port);
    }
    ~PortSwitch() { SetPort(former_); }
    PortSwitch(const PortSwitch&) = delete;
    PortSwitch& operator=(const PortSwitch&) = delete;

private:
    CGrafPtr former_ = nullptr;
};

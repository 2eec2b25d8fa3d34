// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"

// The port that is current when a scope begins, and again when it is left.
class KeptPort
{
public:
    KeptPort() { GetPort(&port_); }
    ~KeptPort() { SetPort(port_); }
    KeptPort(const KeptPort&) = delete;
    KeptPort& operator=(const KeptPort&) = delete;

    CGrafPtr Get() const { return port_; }

private:
    CGrafPtr port_ = nullptr;
};

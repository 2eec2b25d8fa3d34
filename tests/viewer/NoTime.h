// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/HostTime.h"

// For objects whose bytes are all there: nobody has to wait for them.
class NoTime : public viewer::HostTime
{
public:
    void LetTimePass() override {}
};

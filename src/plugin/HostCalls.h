// SPDX-License-Identifier: MIT
//
// The bundle's copy of the host's callbacks. The functions of this file that a bundle exports are
// declared in VornPluginABI.h.
#pragma once

#include "src/plugin/VornPluginABI.h"

// One for all objects of the bundle; the last creation's table wins.
extern VornPluginHostCalls gHostCalls;

// Does nothing.
void TestUPPSignatures();

// SPDX-License-Identifier: MIT
//
// The toolbox's own side of the probe: announcing an operation and keeping the ledger.
#pragma once

#include "toolbox/probe/Probe.h"

namespace toolbox
{

// Tells the observer of `operation`; what it answers is the error the operation must fail with.
OSErr Announce(const char* operation);

// Adds `change` (1 or -1) to the count of a kind of `Probe.h`.
void CountInLedger(SInt32 kind, SInt32 change);

} // namespace toolbox

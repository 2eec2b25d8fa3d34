// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/components/Components.h"

// The plug-in's data handler as the Component Manager knows it; null until it is registered.
extern Component gDataHandlerComponent;

// Registers the data handler unless that is done already. paramErr if it cannot be registered;
// the next call tries again. Writes its two debug lines to standard output.
OSErr EnsureDataHandlerRegistered();

// SPDX-License-Identifier: MIT
//
// The factory of a bundle's one kind of object. Each bundle defines it; tests define their own.
#pragma once

#include "src/plugin/VornPluginABI.h"

// A new object of `bundle`, the caller's to delete; null if the bundle cannot work in this
// process. What its constructor throws passes on.
extern "C" VORN_EXPORT VornPlugin* MakeNewPlugin(CFBundleRef bundle);

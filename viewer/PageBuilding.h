// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/HostTime.h"
#include "viewer/Options.h"
#include "viewer/Page.h"

namespace viewer
{

// Adds an object for each one the command line names. One whose source cannot be opened is given
// up at once.
void AddObjects(Page& page, const Options& options, const PluginFolder& plugins, HostTime& time);

} // namespace viewer

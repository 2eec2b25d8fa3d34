// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/HostTime.h"
#include "viewer/Options.h"
#include "viewer/Page.h"

namespace viewer
{

// Adds an object for each one the command line names, and the text and the media of each that is a
// MIME document. One that cannot be opened is given up at once.
void AddObjects(Page& page, const Options& options, const PluginFolder& plugins, HostTime& time);

} // namespace viewer

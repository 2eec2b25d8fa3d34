// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/Options.h"
#include "viewer/PluginFolder.h"

namespace viewer
{

// Puts the files of a folder that a bundle may show in the place of each object that is a folder,
// in the order of their names. Hidden ones and folders inside are left out. One without such a
// file stays, to be refused as an object.
void ExpandFolders(Options& options, const PluginFolder& plugins);

} // namespace viewer

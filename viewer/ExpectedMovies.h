// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/Options.h"
#include "viewer/PluginFolder.h"

namespace viewer
{

// Lets the toolbox prepare for movies if an object is one by its name or by the type that the user
// gave it. To be called when everything that the page takes has been loaded.
void PrepareExpectedMovies(const Options& options, const PluginFolder& plugins);

} // namespace viewer

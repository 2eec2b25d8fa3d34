// SPDX-License-Identifier: MIT
//
// What the part VornWindow exports.
#pragma once

#include "viewer/Options.h"
#include "viewer/PluginFolder.h"
#include "viewer/Report.h"

#include <stdexcept>

namespace viewer
{

// There is nothing to show a window on; the text says why.
class NoDisplay : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

} // namespace viewer

extern "C" {

// Runs a page in a window until the user closes it. Throws viewer::NoDisplay.
__attribute__((visibility("default"))) void VornRunInWindow(const viewer::Options& options,
                                                            const viewer::PluginFolder& plugins,
                                                            viewer::PageReport& report,
                                                            bool& outputFailed);
}

// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "src/datahandler/DataHandlerRegistration.h"
#include "src/movie/VornMoviePlugin.h"
#include "toolbox/Errors.h"

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    if (EnsureDataHandlerRegistered() != noErr) {
        return nullptr;
    }
    return new VornMoviePlugin(bundle);
}

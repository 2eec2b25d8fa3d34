// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "decoders/png/VornPNGPlugin.h"

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new VornPNGPlugin(bundle);
}

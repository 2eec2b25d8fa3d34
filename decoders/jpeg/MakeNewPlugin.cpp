// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "decoders/jpeg/VornJPEGPlugin.h"

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new VornJPEGPlugin(bundle);
}

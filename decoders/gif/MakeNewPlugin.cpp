// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "decoders/gif/VornGIFPlugin.h"

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new VornGIFPlugin(bundle);
}

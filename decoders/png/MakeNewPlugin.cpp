// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "decoders/common/DecoderPlugin.h"
#include "decoders/png/PngReader.h"

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new DecoderPlugin<PngReader>(bundle);
}

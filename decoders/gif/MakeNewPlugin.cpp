// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "decoders/common/DecoderPlugin.h"
#include "decoders/gif/GifDecoder.h"

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new DecoderPlugin<GifDecoder>(bundle);
}

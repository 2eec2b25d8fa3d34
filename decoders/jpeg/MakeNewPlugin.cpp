// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "decoders/common/DecoderPlugin.h"
#include "decoders/jpeg/JpegReader.h"

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new DecoderPlugin<JpegReader>(bundle);
}

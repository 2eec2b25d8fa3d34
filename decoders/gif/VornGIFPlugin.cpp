// SPDX-License-Identifier: MIT
#include "decoders/gif/VornGIFPlugin.h"

#include "decoders/common/DeclaredTypes.h"
#include "decoders/common/FirstBytes.h"
#include "decoders/gif/GifDecoder.h"

Boolean VornGIFPlugin::CanHandleData(const char* mimeTypeText, const char* name)
{
    static constexpr UInt8 kGif87[] = {'G', 'I', 'F', '8', '7', 'a'};
    static constexpr UInt8 kGif89[] = {'G', 'I', 'F', '8', '9', 'a'};
    return IsDeclared(*this, mimeTypeText, name) || BeginsWith(*this, kGif87) ||
           BeginsWith(*this, kGif89);
}

void VornGIFPlugin::Render()
{
    GifDecoder(*this).Run();
}

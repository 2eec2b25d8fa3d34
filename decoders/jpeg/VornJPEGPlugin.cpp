// SPDX-License-Identifier: MIT
#include "decoders/jpeg/VornJPEGPlugin.h"

#include "decoders/common/DeclaredTypes.h"
#include "decoders/common/FirstBytes.h"
#include "decoders/jpeg/JpegReader.h"

namespace
{

constexpr UInt8 kSignature[] = {0xFF, 0xD8, 0xFF};

} // namespace

Boolean VornJPEGPlugin::CanHandleData(const char* mimeTypeText, const char* name)
{
    return IsDeclared(*this, mimeTypeText, name) || BeginsWith(*this, kSignature);
}

void VornJPEGPlugin::Render()
{
    JpegReader reader(*this);
    while (!reader.IsComplete())
        reader.DecodeNextBlock();
}

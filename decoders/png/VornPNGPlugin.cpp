// SPDX-License-Identifier: MIT
#include "decoders/png/VornPNGPlugin.h"

#include "decoders/common/ArrivingBlock.h"
#include "decoders/common/DeclaredTypes.h"
#include "decoders/common/FirstBytes.h"
#include "decoders/png/PngReader.h"

#include <vector>

namespace
{

constexpr UInt8 kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

} // namespace

Boolean VornPNGPlugin::CanHandleData(const char* mimeTypeText, const char* name)
{
    return IsDeclared(*this, mimeTypeText, name) || BeginsWith(*this, kSignature);
}

void VornPNGPlugin::Render()
{
    PngReader reader(*this);
    std::vector<UInt8> bytes(ArrivingBlock::kSize);
    while (!reader.IsComplete()) {
        const ArrivingBlock block(*this, bytes.data());
        reader.Decode({bytes.data(), block.count});
        if (block.isLast && !reader.IsComplete())
            throw OSErr{kDataNotAvailableErr};
    }
}

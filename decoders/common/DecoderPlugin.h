// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/DeclaredTypes.h"
#include "decoders/common/FirstBytes.h"
#include "src/image/VornImagePlugin.h"

// Shows the images of one format. What is of the format is up to a `Reader`:
//
//   static constexpr UInt8 kSignatures[][6]   how its files begin, all in as many bytes
//   explicit Reader(VornPlugin& image)
//   void Decode()                             decodes the whole image, row by row as it arrives
//
// The last two throw; a bundle's MakeNewPlugin makes a new DecoderPlugin<Reader>.
template <class Reader>
class DecoderPlugin : public VornImagePlugin
{
public:
    using VornImagePlugin::VornImagePlugin;

    // By MIME type, by extension, or by how the data begin.
    Boolean CanHandleData(const char* mimeTypeText, const char* name) override
    {
        bool canHandle = IsDeclared(*this, mimeTypeText, name);
        for (const auto& signature : Reader::kSignatures)
            canHandle = canHandle || BeginsWith(*this, signature);
        return canHandle;
    }
    // Throws what the reader throws; what was decoded before stays.
    void Render() override { Reader(*this).Decode(); }
};

// SPDX-License-Identifier: MIT
#pragma once

#include "src/image/VornImagePlugin.h"

// Shows PNG images, row by row as they arrive.
class VornPNGPlugin : public VornImagePlugin
{
public:
    using VornImagePlugin::VornImagePlugin;

    // By MIME type, by extension, or by how the data begin.
    Boolean CanHandleData(const char* mimeTypeText, const char* name) override;
    // Throws kDataNotAvailableErr where the data end too early, kVornErrRenderFailed where they are
    // damaged, memFullErr for an image that is too large; what was decoded before stays.
    void Render() override;
};

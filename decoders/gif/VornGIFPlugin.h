// SPDX-License-Identifier: MIT
#pragma once

#include "src/image/VornImagePlugin.h"

// Shows GIF images, still and animated.
class VornGIFPlugin : public VornImagePlugin
{
public:
    using VornImagePlugin::VornImagePlugin;

    // By MIME type, by extension, or by how the data begin.
    Boolean CanHandleData(const char* mimeTypeText, const char* name) override;
    void Render() override;
};

// SPDX-License-Identifier: MIT
#include "viewer/web/WebPart.h"

#include "viewer/web/HttpSource.h"

void VornOpenUrl(const std::string& url, std::unique_ptr<viewer::ByteSource>& source)
{
    source = std::make_unique<viewer::HttpSource>(url);
}

// SPDX-License-Identifier: MIT
#include "viewer/text/TextPart.h"

#include "viewer/text/Paragraphs.h"

void VornMakeTextWriter(viewer::Page& page, std::unique_ptr<viewer::TextWriter>& writer)
{
    auto paragraphs = std::make_unique<viewer::Paragraphs>(page);
    if (paragraphs->HasFont()) {
        writer = std::move(paragraphs);
    } else {
        writer.reset();
    }
}

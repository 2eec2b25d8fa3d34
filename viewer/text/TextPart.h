// SPDX-License-Identifier: MIT
//
// What the part VornText exports.
#pragma once

#include "viewer/Page.h"

#include <memory>

namespace viewer
{

// Writes the paragraphs of a page, for which the page keeps room as long as this exists.
class TextWriter
{
public:
    virtual ~TextWriter() = default;
    // Writes those into the page's port that have come to another place. To be called after each
    // round of work.
    virtual void Update() = 0;
};

} // namespace viewer

extern "C" {

// `writer` becomes null if there is no font to write in.
__attribute__((visibility("default"))) void
VornMakeTextWriter(viewer::Page& page, std::unique_ptr<viewer::TextWriter>& writer);
}

// SPDX-License-Identifier: MIT
//
// The paragraphs of a page in a window.
#pragma once

#include "viewer/Page.h"
#include "viewer/window/TextPainter.h"

#include <string>
#include <vector>

namespace viewer
{

// Wraps them to the page's width and writes them where the page has put them.
class Paragraphs
{
public:
    // The page gives its paragraphs room from now on, if there is a font to write them in.
    // `fontFile`: see TextPainter.
    explicit Paragraphs(Page& page, const std::string& fontFile = {});
    ~Paragraphs();
    Paragraphs(const Paragraphs&) = delete;
    Paragraphs& operator=(const Paragraphs&) = delete;

    // Writes those into the page's port that have come to another place. To be called after each
    // round of work.
    void Update();

private:
    // The lines of a paragraph, for as long as neither width nor zoom change.
    struct Wrapping {
        SInt16 width = 0;
        double zoom = 0;
        std::vector<std::string> lines;
    };
    const Wrapping& Wrap(size_t index, SInt16 width, double zoom);
    void Write(size_t index);

    Page& page_;
    TextPainter text_;
    std::vector<Wrapping> wrappings_;
};

} // namespace viewer

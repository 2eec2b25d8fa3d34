// SPDX-License-Identifier: MIT
//
// The paragraphs of a page.
#pragma once

#include "viewer/text/TextPainter.h"
#include "viewer/text/TextPart.h"

#include <string>
#include <vector>

namespace viewer
{

// Wraps them to the page's width and writes them where the page has put them.
class Paragraphs : public TextWriter
{
public:
    // The page gives its paragraphs room from now on, if there is a font to write them in.
    // `fontFile`: see TextPainter.
    explicit Paragraphs(Page& page, const std::string& fontFile = {});
    ~Paragraphs() override;
    Paragraphs(const Paragraphs&) = delete;
    Paragraphs& operator=(const Paragraphs&) = delete;

    bool HasFont() const { return text_.HasFont(); }
    void Update() override;

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

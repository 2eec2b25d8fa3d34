// SPDX-License-Identifier: MIT
//
// Writes text on a canvas, in a font of the system.
#pragma once

#include "viewer/text/Canvas.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct FT_FaceRec_;
struct FT_LibraryRec_;

namespace viewer
{

// Text is UTF-8. Without a font nothing is written, and every text is 0 wide.
class TextPainter
{
public:
    // `fontFile`: empty for the first one that is found where systems keep them.
    explicit TextPainter(const std::string& fontFile = {});
    ~TextPainter();
    TextPainter(const TextPainter&) = delete;
    TextPainter& operator=(const TextPainter&) = delete;

    bool HasFont() const { return face_ != nullptr; }
    // Heights are those of an em, in pixels.
    SInt32 WidthOf(std::string_view text, int height);
    // Cuts the text's end off, with an ellipsis, if it is too wide.
    std::string Shortened(std::string_view text, int height, SInt32 width);
    // In lines no wider than that: broken at line feeds and spaces, and within a word only if it is
    // too wide for a line of its own.
    std::vector<std::string> Wrapped(std::string_view text, int height, SInt32 width);
    // `v` is the base line.
    void Write(Canvas& canvas, SInt32 h, SInt32 v, std::string_view text, int height, Ink ink);

private:
    struct Glyph {
        SInt32 left = 0;
        SInt32 top = 0;
        SInt32 width = 0;
        SInt32 rows = 0;
        SInt32 advance = 0;
        std::vector<UInt8> coverage;
    };
    size_t LineLength(std::string_view text, int height, SInt32 width);
    void OpenFont(const std::string& fontFile);
    const Glyph& GlyphOf(UInt32 character, int height);
    Glyph Render(UInt32 character, int height);

    FT_LibraryRec_* library_ = nullptr;
    FT_FaceRec_* face_ = nullptr;
    std::map<std::pair<int, UInt32>, Glyph> glyphs_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/text/TextPainter.h"

#include <algorithm>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace viewer
{
namespace
{

constexpr const char* kFontFiles[] = {
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/TTF/DejaVuSans.ttf",
    "/usr/share/fonts/truetype/noto/NotoSans-Regular.ttf",
    "/usr/share/fonts/noto/NotoSans-Regular.ttf",
    "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
    "/usr/share/fonts/liberation/LiberationSans-Regular.ttf",
    "/usr/share/fonts/liberation-sans/LiberationSans-Regular.ttf",
    "/usr/share/fonts/truetype/freefont/FreeSans.ttf",
};
constexpr const char* kEllipsis = "\u2026";
constexpr UInt32 kReplacement = 0xFFFD;

// Takes one character off the text's beginning. A byte that is no UTF-8 counts for itself.
UInt32 TakeCharacter(std::string_view& text)
{
    const auto first = static_cast<UInt8>(text[0]);
    const size_t length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    UInt32 character = first < 0x80 ? first : first & (0xFFU >> (length + 1));
    bool isValid = (first < 0x80 || (first >= 0xC2 && first < 0xF5)) && text.size() >= length;
    for (size_t i = 1; isValid && i < length; ++i) {
        const auto next = static_cast<UInt8>(text[i]);
        isValid = (next & 0xC0) == 0x80;
        character = character << 6 | (next & 0x3FU);
    }
    text.remove_prefix(isValid ? length : 1);
    return isValid ? character : kReplacement;
}

} // namespace

TextPainter::TextPainter(const std::string& fontFile)
{
    if (FT_Init_FreeType(&library_) != 0) {
        library_ = nullptr;
        return;
    }
    OpenFont(fontFile);
}

TextPainter::~TextPainter()
{
    if (face_ != nullptr) {
        FT_Done_Face(face_);
    }
    if (library_ != nullptr) {
        FT_Done_FreeType(library_);
    }
}

void TextPainter::OpenFont(const std::string& fontFile)
{
    const auto open = [this](const char* path) {
        return FT_New_Face(library_, path, 0, &face_) == 0;
    };
    const bool isOpen = !fontFile.empty()
                            ? open(fontFile.c_str())
                            : std::any_of(std::begin(kFontFiles), std::end(kFontFiles), open);
    if (!isOpen) {
        face_ = nullptr;
    }
}

SInt32 TextPainter::WidthOf(std::string_view text, int height)
{
    SInt32 width = 0;
    while (HasFont() && !text.empty()) {
        width += GlyphOf(TakeCharacter(text), height).advance;
    }
    return width;
}

std::string TextPainter::Shortened(std::string_view text, int height, SInt32 width)
{
    if (WidthOf(text, height) <= width) {
        return std::string(text);
    }
    const SInt32 room = width - WidthOf(kEllipsis, height);
    std::string_view rest = text;
    size_t kept = 0;
    for (SInt32 used = 0; !rest.empty();) {
        used += GlyphOf(TakeCharacter(rest), height).advance;
        if (used > room) {
            break;
        }
        kept = text.size() - rest.size();
    }
    return std::string(text.substr(0, kept)) + kEllipsis;
}

std::vector<std::string> TextPainter::Wrapped(std::string_view text, int height, SInt32 width)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        std::string_view rest = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(rest.size() + 1, text.size()));
        do {
            const size_t length = LineLength(rest, height, width);
            lines.emplace_back(rest.substr(0, length));
            rest.remove_prefix(std::min(rest.find_first_not_of(' ', length), rest.size()));
        } while (!rest.empty());
    }
    return lines;
}

// How many bytes of the text fit into a line, at least one character.
size_t TextPainter::LineLength(std::string_view text, int height, SInt32 width)
{
    size_t afterWord = 0;
    std::string_view rest = text;
    for (SInt32 used = 0; HasFont() && !rest.empty();) {
        const size_t at = text.size() - rest.size();
        if (text[at] == ' ' && at > 0 && text[at - 1] != ' ') {
            afterWord = at;
        }
        used += GlyphOf(TakeCharacter(rest), height).advance;
        if (used > width && at > 0) {
            return afterWord > 0 ? afterWord : at;
        }
    }
    return text.size();
}

void TextPainter::Write(Canvas& canvas, SInt32 h, SInt32 v, std::string_view text, int height,
                        Ink ink)
{
    while (HasFont() && !text.empty()) {
        const Glyph& glyph = GlyphOf(TakeCharacter(text), height);
        const UInt8* coverage = glyph.coverage.data();
        for (SInt32 row = 0; row < glyph.rows; ++row) {
            for (SInt32 column = 0; column < glyph.width; ++column) {
                canvas.Blend(h + glyph.left + column, v - glyph.top + row, ink, *coverage++);
            }
        }
        h += glyph.advance;
    }
}

const TextPainter::Glyph& TextPainter::GlyphOf(UInt32 character, int height)
{
    const auto [found, isNew] = glyphs_.try_emplace({height, character});
    if (isNew) {
        found->second = Render(character, height);
    }
    return found->second;
}

TextPainter::Glyph TextPainter::Render(UInt32 character, int height)
{
    Glyph glyph;
    if (FT_Set_Pixel_Sizes(face_, 0, static_cast<FT_UInt>(height)) != 0 ||
        FT_Load_Char(face_, character, FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT) != 0) {
        return glyph;
    }
    const FT_GlyphSlotRec& slot = *face_->glyph;
    glyph.left = slot.bitmap_left;
    glyph.top = slot.bitmap_top;
    glyph.width = static_cast<SInt32>(slot.bitmap.width);
    glyph.rows = static_cast<SInt32>(slot.bitmap.rows);
    glyph.advance = static_cast<SInt32>((slot.advance.x + 32) >> 6);
    for (SInt32 row = 0; row < glyph.rows; ++row) {
        const UInt8* const from = slot.bitmap.buffer + ptrdiff_t{row} * slot.bitmap.pitch;
        glyph.coverage.insert(glyph.coverage.end(), from, from + glyph.width);
    }
    return glyph;
}

} // namespace viewer

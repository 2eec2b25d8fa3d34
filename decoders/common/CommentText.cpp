// SPDX-License-Identifier: MIT
#include "decoders/common/CommentText.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr size_t kLongestComment = 255;
constexpr char32_t kMalformed = 0xFFFFFFFF;

// The characters 0x80 to 0xFF.
constexpr char16_t kUpperHalf[] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
    0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
    0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
    0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
    0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7};
static_assert(std::size(kUpperHalf) == 128);

char MacRomanOf(char32_t character)
{
    if (character < 0x80)
        return static_cast<char>(character);
    const auto* const found = std::find(std::begin(kUpperHalf), std::end(kUpperHalf), character);
    return found == std::end(kUpperHalf) ? '?' : static_cast<char>(0x80 + (found - kUpperHalf));
}

char32_t TakeByte(std::string_view& text)
{
    const auto byte = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    return byte;
}

// One character of UTF-8. Overlong forms are let through: nothing is guarded by them here.
char32_t TakeCharacter(std::string_view& text)
{
    const char32_t lead = TakeByte(text);
    if (lead < 0x80)
        return lead;
    const size_t following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < following)
        return kMalformed;
    char32_t character = lead & (0x3F >> following);
    for (size_t i = 0; i < following; ++i) {
        const char32_t byte = TakeByte(text);
        if ((byte & 0xC0) != 0x80)
            return kMalformed;
        character = character << 6 | (byte & 0x3F);
    }
    return character;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty()) {
        if (TakeCharacter(text) == kMalformed)
            return false;
    }
    return true;
}

// What may count of a long text, without the beginning of a character at its end.
std::string_view Shortened(std::string_view text)
{
    constexpr size_t kLongest = kLongestComment * 4;
    if (text.size() <= kLongest)
        return text;
    text = text.substr(0, kLongest);
    while (!text.empty() && (text.back() & 0xC0) == 0x80)
        text.remove_suffix(1);
    if (!text.empty() && (text.back() & 0xC0) == 0xC0)
        text.remove_suffix(1);
    return text;
}

} // namespace

std::string CommentFromText(std::string_view text)
{
    text = Shortened(text.substr(0, text.find('\0')));
    char32_t (*const take)(std::string_view&) = IsUtf8(text) ? TakeCharacter : TakeByte;
    std::string comment;
    while (!text.empty() && comment.size() < kLongestComment)
        comment += MacRomanOf(take(text));
    return comment;
}

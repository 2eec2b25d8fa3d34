// SPDX-License-Identifier: MIT
#include "decoders/common/CommentText.h"

#include "toolbox/MacRoman.h"

#include <algorithm>

namespace
{

constexpr size_t kLongestComment = 255;
constexpr char32_t kMalformed = 0xFFFFFFFF;

char MacRomanOf(char32_t character)
{
    if (character < 0x80)
        return static_cast<char>(character);
    const auto& upper = toolbox::kMacRomanUpperHalf;
    const auto found = std::find(upper.begin(), upper.end(), character);
    return found == upper.end() ? '?' : static_cast<char>(0x80 + (found - upper.begin()));
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

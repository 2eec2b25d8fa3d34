// SPDX-License-Identifier: MIT
#include "viewer/mail/HtmlCharacters.h"

#include "toolbox/Types.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace viewer
{
namespace
{

constexpr size_t kLongestName = 10;
constexpr UInt32 kReplacement = 0xFFFD;

struct Name {
    std::string_view name;
    UInt32 code;
};

constexpr Name kNames[] = {
    {"amp", '&'},      {"lt", '<'},       {"gt", '>'},        {"quot", '"'},     {"apos", '\''},
    {"nbsp", ' '},     {"copy", 0xA9},    {"reg", 0xAE},      {"trade", 0x2122}, {"deg", 0xB0},
    {"middot", 0xB7},  {"bull", 0x2022},  {"hellip", 0x2026}, {"ndash", 0x2013}, {"mdash", 0x2014},
    {"lsquo", 0x2018}, {"rsquo", 0x2019}, {"sbquo", 0x201A},  {"ldquo", 0x201C}, {"rdquo", 0x201D},
    {"bdquo", 0x201E}, {"laquo", 0xAB},   {"raquo", 0xBB},    {"euro", 0x20AC},  {"pound", 0xA3},
    {"cent", 0xA2},    {"yen", 0xA5},     {"sect", 0xA7},     {"para", 0xB6},    {"times", 0xD7},
    {"divide", 0xF7},  {"szlig", 0xDF},   {"Auml", 0xC4},     {"Ouml", 0xD6},    {"Uuml", 0xDC},
    {"auml", 0xE4},    {"ouml", 0xF6},    {"uuml", 0xFC},     {"Aring", 0xC5},   {"aring", 0xE5},
    {"AElig", 0xC6},   {"aelig", 0xE6},   {"Oslash", 0xD8},   {"oslash", 0xF8},  {"Ccedil", 0xC7},
    {"ccedil", 0xE7},  {"Eacute", 0xC9},  {"eacute", 0xE9},   {"egrave", 0xE8},  {"ecirc", 0xEA},
    {"euml", 0xEB},    {"agrave", 0xE0},  {"aacute", 0xE1},   {"acirc", 0xE2},   {"atilde", 0xE3},
    {"iacute", 0xED},  {"igrave", 0xEC},  {"icirc", 0xEE},    {"iuml", 0xEF},    {"oacute", 0xF3},
    {"ograve", 0xF2},  {"ocirc", 0xF4},   {"otilde", 0xF5},   {"uacute", 0xFA},  {"ugrave", 0xF9},
    {"ucirc", 0xFB},   {"Ntilde", 0xD1},  {"ntilde", 0xF1},   {"iexcl", 0xA1},   {"iquest", 0xBF},
    {"shy", 0xAD},     {"zwnj", 0x200C},
};

std::string Utf8(UInt32 code)
{
    const auto byte = [](UInt32 value) { return static_cast<char>(value); };
    const auto following = [&](int shift) { return byte(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        return {byte(code)};
    }
    if (code < 0x800) {
        return {byte(0xC0 | (code >> 6)), following(0)};
    }
    if (code < 0x10000) {
        return {byte(0xE0 | (code >> 12)), following(6), following(0)};
    }
    return {byte(0xF0 | (code >> 18)), following(12), following(6), following(0)};
}

// Neither a control character nor half of a pair nor beyond the last one.
bool IsCharacter(UInt32 code)
{
    return (code >= 0x20 && code < 0xD800) || (code >= 0xE000 && code < 0x110000) || code == '\n' ||
           code == '\t';
}

// `digits` is what stands behind "#".
UInt32 ReadNumber(std::string_view digits)
{
    const bool isHex = !digits.empty() && (digits[0] == 'x' || digits[0] == 'X');
    digits.remove_prefix(isHex ? 1 : 0);
    UInt32 code = 0;
    const auto [end, problem] =
        std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? 16 : 10);
    const bool isWhole = problem == std::errc() && end == digits.data() + digits.size();
    return isWhole && IsCharacter(code) ? code : kReplacement;
}

} // namespace

NamedCharacter ReadNamedCharacter(std::string_view html)
{
    const size_t end = html.substr(0, kLongestName + 2).find(';');
    if (end == std::string_view::npos || end < 2) {
        return {"&", 1};
    }
    const std::string_view name = html.substr(1, end - 1);
    if (name[0] == '#') {
        return {Utf8(ReadNumber(name.substr(1))), end + 1};
    }
    const auto* const known = std::find_if(std::begin(kNames), std::end(kNames),
                                           [&](const Name& each) { return each.name == name; });
    return known == std::end(kNames) ? NamedCharacter{"&", 1}
                                     : NamedCharacter{Utf8(known->code), end + 1};
}

} // namespace viewer

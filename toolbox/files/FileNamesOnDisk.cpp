// SPDX-License-Identifier: MIT
#include "toolbox/files/FileNamesOnDisk.h"

#include <array>
#include <map>

namespace toolbox
{
namespace
{

constexpr char32_t kPrivateArea = 0xF000; // plus the code of the character that stands there
constexpr char32_t kPrivateDot = kPrivateArea + '.';

// The characters of the codes 0x80 to 0xFF.
constexpr std::array<char16_t, 128> kUpperHalf = {
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
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

// In UTF-8; no character here needs more than three bytes.
std::string Encoded(char32_t character)
{
    const auto tail = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (character < 0x80) {
        return {static_cast<char>(character)};
    }
    if (character < 0x800) {
        return {static_cast<char>(0xC0 | character >> 6), tail(character)};
    }
    return {static_cast<char>(0xE0 | character >> 12), tail(character >> 6), tail(character)};
}

char32_t CharacterFor(unsigned char code)
{
    return code < 0x80 ? code : kUpperHalf[code - 0x80U];
}

char32_t CharacterOnDisk(unsigned char code)
{
    switch (code) {
    case '/':
        return ':';
    case ':':
    case 0:
        return kPrivateArea + code;
    default:
        return CharacterFor(code);
    }
}

using Mapping = char32_t (*)(unsigned char code);
using Codes = std::map<std::string, char, std::less<>>; // by the character in UTF-8

std::string Encode(std::string_view text, Mapping mapping)
{
    std::string encoded;
    for (const char code : text) {
        encoded += Encoded(mapping(static_cast<unsigned char>(code)));
    }
    return encoded;
}

Codes CodesOf(Mapping mapping)
{
    Codes codes;
    for (unsigned code = 0; code < 256; ++code) {
        const auto byte = static_cast<unsigned char>(code);
        codes.emplace(Encoded(mapping(byte)), static_cast<char>(byte));
    }
    return codes;
}

// Of the character that a byte begins; a byte that begins none is found in no table.
size_t SequenceLength(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : 3;
}

std::optional<std::string> Decode(std::string_view text, const Codes& codes)
{
    std::string decoded;
    while (!text.empty()) {
        const std::string_view character = text.substr(0, SequenceLength(text.front()));
        const auto found = codes.find(character);
        if (found == codes.end()) {
            return std::nullopt;
        }
        decoded += found->second;
        text.remove_prefix(character.size());
    }
    return decoded;
}

Codes CodesOnDisk()
{
    Codes codes = CodesOf(CharacterOnDisk);
    codes.emplace(Encoded(kPrivateDot), '.');
    return codes;
}

} // namespace

std::string Utf8FromMacRoman(std::string_view text)
{
    return Encode(text, CharacterFor);
}

std::optional<std::string> MacRomanFromUtf8(std::string_view text)
{
    static const Codes codes = CodesOf(CharacterFor);
    return Decode(text, codes);
}

std::string FileNameOnDisk(std::string_view name)
{
    if (name == "." || name == "..") {
        return Encoded(kPrivateDot) + std::string(name.substr(1));
    }
    return Encode(name, CharacterOnDisk);
}

std::optional<std::string> NameFromDisk(std::string_view component)
{
    static const Codes codes = CodesOnDisk();
    const std::optional<std::string> name = Decode(component, codes);
    const bool isWholeName = name && !name->empty() && FileNameOnDisk(*name) == component;
    return isWholeName ? name : std::nullopt;
}

} // namespace toolbox

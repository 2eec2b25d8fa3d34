// SPDX-License-Identifier: MIT
#include "toolbox/files/FileNamesOnDisk.h"

#include "toolbox/MacRoman.h"

#include <map>

namespace toolbox
{
namespace
{

constexpr char32_t kPrivateArea = 0xF000; // plus the code of the character that stands there
constexpr char32_t kPrivateDot = kPrivateArea + '.';

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

char32_t CharacterOnDisk(unsigned char code)
{
    switch (code) {
    case '/':
        return ':';
    case ':':
    case 0:
        return kPrivateArea + code;
    default:
        return CharacterOfMacRoman(code);
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
    return Encode(text, CharacterOfMacRoman);
}

std::optional<std::string> MacRomanFromUtf8(std::string_view text)
{
    static const Codes codes = CodesOf(CharacterOfMacRoman);
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

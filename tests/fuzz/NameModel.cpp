// SPDX-License-Identifier: MIT
#include "tests/fuzz/NameModel.h"

#include <algorithm>
#include <utility>

namespace model
{
namespace
{

constexpr size_t kLongest = 31;
constexpr size_t kLongestExtension = 5; // with its dot

struct Folding {
    const char* codes;
    UInt8 key;
};
// Mac Roman, but for the small letters.
constexpr Folding kFoldings[] = {
    {"\x80\x81\x87\x88\x89\x8A\x8B\x8C\xCB\xCC", 'A'},
    {"\x82\x8D", 'C'},
    {"\x83\x8E\x8F\x90\x91", 'E'},
    {"\x92\x93\x94\x95", 'I'},
    {"\x84\x96", 'N'},
    {"\x85\x97\x98\x99\x9A\x9B\xAF\xBF\xCD", 'O'},
    {"\x86\x9C\x9D\x9E\x9F", 'U'},
    {"\xD8", 'Y'},
    {"\xBE\xCE\xCF", 0xAE},
    {"\xC7\xC8\xD2\xD3", '"'},
    {"\xD4\xD5", '\''},
    {"\xCA", ' '},
};

size_t Room(size_t taken)
{
    return taken < kLongest ? kLongest - taken : 0;
}

} // namespace

UInt8 Folded(char character)
{
    if (character >= 'a' && character <= 'z')
        return static_cast<UInt8>(character - 'a' + 'A');
    for (const Folding& folding : kFoldings) {
        if (character != 0 && std::string(folding.codes).find(character) != std::string::npos)
            return folding.key;
    }
    return static_cast<UInt8>(character);
}

int Compare(const std::string& a, const std::string& b)
{
    const auto keys = [](std::string text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char c) { return static_cast<char>(Folded(c)); });
        return text;
    };
    const int order = keys(a).compare(keys(b));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

std::string LegalCharacters(std::string name)
{
    for (char& character : name) {
        if (character == '/' || character == ':' || character == '\r')
            character = ' ';
    }
    return name;
}

std::string LegalName(const std::string& name)
{
    std::string legal = name.empty() ? "x" : LegalCharacters(name.substr(0, kLongest));
    if (legal[0] == '.')
        legal[0] = '_';
    return legal;
}

SplitName Split(const std::string& name)
{
    const size_t dot = name.rfind('.');
    const size_t lowest = name.size() > kLongestExtension ? name.size() - kLongestExtension : 1;
    if (dot == std::string::npos || dot < lowest)
        return {LegalCharacters(name), std::nullopt};
    const std::string extension = name.substr(dot);
    const std::string base = name.substr(0, std::min(dot, Room(extension.size())));
    return {LegalCharacters(base), extension};
}

std::string UniqueName(const std::string& base, const std::string& extension,
                       const std::function<bool(const std::string&)>& exists)
{
    std::string shrinking = base;
    std::string suffix;
    for (int number = 2;; ++number) {
        shrinking = shrinking.substr(0, Room(suffix.size() + extension.size()));
        const std::string name = (shrinking + suffix + extension).substr(0, kLongest);
        if (!exists(name))
            return name;
        suffix = "." + std::to_string(number);
    }
}

} // namespace model

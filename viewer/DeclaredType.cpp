// SPDX-License-Identifier: MIT
#include "viewer/DeclaredType.h"

namespace viewer
{
namespace
{

char SmallLetter(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

std::string ReadDeclaredType(std::string_view field)
{
    field = field.substr(0, field.find(';'));
    const size_t first = field.find_first_not_of(" \t");
    const size_t last = field.find_last_not_of(" \t\r\n");
    if (first == std::string_view::npos || field.find('/') == std::string_view::npos) {
        return "";
    }
    std::string type;
    for (const char c : field.substr(first, last - first + 1)) {
        type += SmallLetter(c);
    }
    return type.ends_with("/octet-stream") ? "" : type;
}

} // namespace viewer

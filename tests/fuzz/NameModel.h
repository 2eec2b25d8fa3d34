// SPDX-License-Identifier: MIT
//
// What the string and file-name functions must give, on std::string.
#pragma once

#include "toolbox/Types.h"

#include <functional>
#include <optional>
#include <string>

namespace model
{

// The key by which characters are compared.
UInt8 Folded(char character);
int Compare(const std::string& a, const std::string& b);

std::string LegalCharacters(std::string name);
// Of a Pascal string.
std::string LegalName(const std::string& name);

struct SplitName {
    std::string base; // legal
    std::optional<std::string> extension;
};
SplitName Split(const std::string& name);

// The first of the names that belong to base and extension for which `exists` answers no.
std::string UniqueName(const std::string& base, const std::string& extension,
                       const std::function<bool(const std::string&)>& exists);

} // namespace model

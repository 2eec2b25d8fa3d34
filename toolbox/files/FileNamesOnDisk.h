// SPDX-License-Identifier: MIT
//
// The platform's file names are Mac Roman and may hold any character; a file system here takes
// UTF-8 without slashes. Each name stands on disk as exactly one path component, and different
// names as different components.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace toolbox
{

std::string Utf8FromMacRoman(std::string_view text);
// Nothing if the text is malformed or holds a character that Mac Roman lacks.
std::optional<std::string> MacRomanFromUtf8(std::string_view text);

// The component for a name that is not empty. "/" becomes ":"; what may not stand in a component
// or would lead elsewhere (":", the zero character, "." and ".." as whole names) becomes a
// character of the private use area.
std::string FileNameOnDisk(std::string_view name);
// The way back; nothing for a component that FileNameOnDisk never gives.
std::optional<std::string> NameFromDisk(std::string_view component);

} // namespace toolbox

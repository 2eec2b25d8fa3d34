// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace viewer
{

// The MIME type that a Content-Type field declares, in small letters and without its parameters.
// Empty for none, and for those that only say "some bytes".
std::string ReadDeclaredType(std::string_view field);

} // namespace viewer

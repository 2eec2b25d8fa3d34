// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace viewer
{

struct NamedCharacter {
    std::string text;  // UTF-8
    size_t length = 0; // of what stood for it
};

// What "&name;" or "&#number;" at the start of `html` stands for; the "&" itself if it is neither.
NamedCharacter ReadNamedCharacter(std::string_view html);

} // namespace viewer

// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace viewer
{

// A paragraph of a page.
struct TextBlock {
    std::string text;         // UTF-8; a line feed where its author ended a line
    size_t objectsBefore = 0; // how many of the page's objects stand before it
};

} // namespace viewer

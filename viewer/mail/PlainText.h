// SPDX-License-Identifier: MIT
//
// Text as its paragraphs, without what a page of plain paragraphs cannot show.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace viewer
{

// Empty lines part them. Blanks around them and control characters are dropped.
std::vector<std::string> ParagraphsOf(std::string_view text);
// What a reader of the HTML would read: no tags, scripts and styles; characters that are named or
// numbered are put in. UTF-8.
std::string TextOfHtml(std::string_view html);
// The character set that the HTML itself names near its start, in small letters; empty without.
std::string CharsetOfHtml(std::string_view html);

} // namespace viewer

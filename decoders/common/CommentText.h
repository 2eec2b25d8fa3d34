// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

// A file's text as an object's comment: Mac Roman, as far as that has the characters ("?" for
// others), and not so long that it would touch the object's MIME type. A text that is not
// well-formed UTF-8 is taken for Latin-1. It ends at a zero byte.
std::string CommentFromText(std::string_view text);

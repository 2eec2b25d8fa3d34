// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

// The source with all that is no code made spaces: comments, what is between quotation marks,
// preprocessor lines and static assertions. Offsets stay.
std::string CodeOnly(const std::string& source);

bool IsNameCharacter(char character);

// Where the bracket that `code` has at `open` is closed; the length of `code` if it is not.
std::size_t ClosingBracket(const std::string& code, std::size_t open);

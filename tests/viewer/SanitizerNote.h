// SPDX-License-Identifier: MIT
#pragma once

#include <string>

// What a program wrote, without the line by which the address sanitizer tells of its doubts about
// switching stacks.
inline std::string WithoutSanitizerNote(std::string text)
{
    const size_t note = text.find("WARNING: ASan doesn't fully support makecontext");
    if (note == std::string::npos) {
        return text;
    }
    const size_t before = text.rfind('\n', note);
    const size_t start = before == std::string::npos ? 0 : before + 1;
    const size_t end = text.find('\n', note);
    return text.erase(start, end == std::string::npos ? end : end + 1 - start);
}

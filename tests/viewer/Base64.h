// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

// In lines, as in an e-mail.
inline std::string Base64(const std::string& bytes)
{
    const char* const digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        uint32_t group = 0;
        for (size_t j = 0; j < 3; ++j) {
            group = group << 8 | (i + j < bytes.size() ? static_cast<uint8_t>(bytes[i + j]) : 0);
        }
        for (size_t j = 0; j < 4; ++j) {
            text += i + j > bytes.size() ? '=' : digits[group >> (18 - 6 * j) & 63];
        }
        text += i % 57 == 54 ? "\r\n" : "";
    }
    return text + "\r\n";
}

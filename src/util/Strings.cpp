// SPDX-License-Identifier: MIT
#include "src/util/Strings.h"

#include <algorithm>
#include <cstring>

// clang-format off
const UInt8 gCharsTable[256] = {
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
    0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 0x1F,
    ' ',  '!',  '"',  '#',  '$',  '%',  '&',  '\'', '(',  ')',  '*',  '+',  ',',  '-',  '.',  '/',
    '0',  '1',  '2',  '3',  '4',  '5',  '6',  '7',  '8',  '9',  ':',  ';',  '<',  '=',  '>',  '?',
    '@',  'A',  'B',  'C',  'D',  'E',  'F',  'G',  'H',  'I',  'J',  'K',  'L',  'M',  'N',  'O',
    'P',  'Q',  'R',  'S',  'T',  'U',  'V',  'W',  'X',  'Y',  'Z',  '[',  '\\', ']',  '^',  '_',
    '`',  'A',  'B',  'C',  'D',  'E',  'F',  'G',  'H',  'I',  'J',  'K',  'L',  'M',  'N',  'O',
    'P',  'Q',  'R',  'S',  'T',  'U',  'V',  'W',  'X',  'Y',  'Z',  '{',  '|',  '}',  '~',  0x7F,
    'A',  'A',  'C',  'E',  'N',  'O',  'U',  'A',  'A',  'A',  'A',  'A',  'A',  'C',  'E',  'E',
    'E',  'E',  'I',  'I',  'I',  'I',  'N',  'O',  'O',  'O',  'O',  'O',  'U',  'U',  'U',  'U',
    0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xAB, 0xAC, 0xAD, 0xAE, 'O',
    0xB0, 0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xBB, 0xBC, 0xBD, 0xAE, 'O',
    0xC0, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, '"',  '"',  0xC9, ' ',  'A',  'A',  'O',  0xAE, 0xAE,
    0xD0, 0xD1, '"',  '"',  '\'', '\'', 0xD6, 0xD7, 'Y',  0xD9, 0xDA, 0xDB, 0xDC, 0xDD, 0xDE, 0xDF,
    0xE0, 0xE1, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0xEA, 0xEB, 0xEC, 0xED, 0xEE, 0xEF,
    0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFA, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF,
};
// clang-format on

namespace
{

UInt8 Fold(char character)
{
    return gCharsTable[static_cast<UInt8>(character)];
}

// Characters before the terminator, `most` at most; nothing behind either is read.
std::size_t BoundedLength(const char* text, std::size_t most)
{
    std::size_t length = 0;
    while (length < most && text[length])
        ++length;
    return length;
}

} // namespace

void StrCopySafe(char* dst, const char* src, UInt32 maxChars)
{
    const std::size_t length = BoundedLength(src, maxChars);
    std::memmove(dst, src, length);
    dst[length] = 0;
}

int StrCaseCmp(const char* a, const char* b)
{
    while (*a && Fold(*a) == Fold(*b)) {
        ++a;
        ++b;
    }
    if (Fold(*a) == Fold(*b))
        return 0;
    return Fold(*a) < Fold(*b) ? -1 : 1;
}

Boolean MyStrEqual(const char* a, const char* b)
{
    return StrCaseCmp(a, b) == 0;
}

void CopyPascalString(StringPtr dst, ConstStringPtr src)
{
    std::memmove(dst, src, std::size_t{src[0]} + 1);
}

void CopyCToPascalString(const char* src, StringPtr dst, SInt32 maxChars)
{
    const std::size_t length = BoundedLength(src, static_cast<std::size_t>(std::max(maxChars, 0)));
    std::memmove(dst + 1, src, length);
    dst[0] = static_cast<UInt8>(length);
}

void CopyPascalToCString(ConstStringPtr src, char* dst, SInt32 maxChars)
{
    const auto length = static_cast<std::size_t>(std::clamp<SInt32>(maxChars, 0, src[0]));
    std::memmove(dst, src + 1, length);
    dst[length] = 0;
}

/* SPDX-License-Identifier: MIT
 *
 * Bounded copies between C and Pascal strings, and comparison without regard to case and accents.
 * Characters are Mac Roman. Nothing here fails: the copies trust the caller's buffer sizes.
 */
#ifndef VORN_UTIL_STRINGS_H
#define VORN_UTIL_STRINGS_H

#include "src/util/Export.h"
#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

/* Copies at most `maxChars` characters and a terminator: `dst` holds maxChars + 1 bytes. */
VORN_EXPORT void StrCopySafe(char* dst, const char* src, UInt32 maxChars);
/* -1, 0 or 1 as `a` sorts before, with or after `b` by gCharsTable. */
VORN_EXPORT int StrCaseCmp(const char* a, const char* b);
/* Whether `a` and `b` are the same by gCharsTable. */
VORN_EXPORT Boolean MyStrEqual(const char* a, const char* b);
/* Copies a Pascal string whole; the areas may overlap. */
VORN_EXPORT void CopyPascalString(StringPtr dst, ConstStringPtr src);
/* Copies at most `maxChars` (255 at most is meaningful, 0 or less is none) characters. */
VORN_EXPORT void CopyCToPascalString(const char* src, StringPtr dst, SInt32 maxChars);
/* Copies at most `maxChars` characters (0 or less: none) and a terminator: `dst` holds
 * maxChars + 1 bytes, one at least. */
VORN_EXPORT void CopyPascalToCString(ConstStringPtr src, char* dst, SInt32 maxChars);

/* The comparison key of each character: small letters, the accented letters at 0x80 to 0x9F and
 * 0xCB to 0xCD, the stroked O and 0xD8 become plain capitals; ligatures of A or O and E become the
 * capital one of A and E; double and curly single quotation marks become straight, the fixed space
 * a plain one. Every other code is its own key, accented capitals at 0xE5 to 0xF4 too. */
extern const UInt8 gCharsTable[256];

TOOLBOX_END_DECLS

#endif

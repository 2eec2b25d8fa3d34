/* SPDX-License-Identifier: MIT
 *
 * The toolbox's basic types. C11 and C++20.
 *
 * The platform's `long` was 32 bits; here every width is in the name. A value that carries a
 * caller's pointer (a reference constant, a component parameter slot) is pointer-wide.
 */
#ifndef VORN_TOOLBOX_TYPES_H
#define VORN_TOOLBOX_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define TOOLBOX_BEGIN_DECLS extern "C" {
#define TOOLBOX_END_DECLS }
#define TOOLBOX_STATIC_ASSERT(condition, text) static_assert(condition, text)
#else
#define TOOLBOX_BEGIN_DECLS
#define TOOLBOX_END_DECLS
#define TOOLBOX_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#endif

/* Marks an operation that the toolbox library exports; everything else in it is hidden. */
#define TOOLBOX_EXPORT __attribute__((visibility("default")))

/* A four-character code, first character in the most significant byte. */
#define FOUR_CHARS(a, b, c, d)                                                                     \
    (((UInt32)(unsigned char)(a) << 24) | ((UInt32)(unsigned char)(b) << 16) |                     \
     ((UInt32)(unsigned char)(c) << 8) | (UInt32)(unsigned char)(d))

typedef int8_t SInt8;
typedef uint8_t UInt8;
typedef int16_t SInt16;
typedef uint16_t UInt16;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef int64_t SInt64;
typedef uint64_t UInt64;

typedef unsigned char Boolean; /* 0 is false, anything else is true */
typedef SInt16 OSErr;          /* 0 is success, see toolbox/Errors.h */
typedef SInt32 OSStatus;
typedef UInt32 OSType; /* four characters, see FOUR_CHARS */
typedef SInt32 Size;   /* bytes */
typedef intptr_t RefCon;

typedef char* Ptr;
typedef char** Handle; /* pointer to a master pointer: the block may move unless locked */

typedef unsigned char Str255[256]; /* Pascal strings: length byte, then Mac Roman characters */
typedef unsigned char Str63[64];
typedef unsigned char Str31[32];
typedef unsigned char* StringPtr;
typedef const unsigned char* ConstStringPtr;
typedef const unsigned char* ConstStr255Param;

/* A 64-bit number as the platform writes it in records: high word first. */
typedef struct wide {
    SInt32 hi;
    UInt32 lo;
} wide;

typedef struct Point {
    SInt16 v;
    SInt16 h;
} Point;

typedef struct Rect {
    SInt16 top;
    SInt16 left;
    SInt16 bottom;
    SInt16 right;
} Rect;

TOOLBOX_STATIC_ASSERT(sizeof(wide) == 8, "wide is two words");
TOOLBOX_STATIC_ASSERT(sizeof(Point) == 4, "Point is two 16-bit coordinates");
TOOLBOX_STATIC_ASSERT(sizeof(Rect) == 8, "Rect is four 16-bit coordinates");

#endif

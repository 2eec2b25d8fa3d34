/* SPDX-License-Identifier: MIT
 *
 * Core Foundation: as much of it as reading a bundle's information dictionary takes. Objects are
 * reference-counted; what a function with Create in its name returns is the caller's to release,
 * what one with Get returns belongs to its container.
 */
#ifndef VORN_TOOLBOX_FOUNDATION_H
#define VORN_TOOLBOX_FOUNDATION_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef; /* null: the default allocator */
typedef const struct __CFString* CFStringRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFURL* CFURLRef;
typedef struct __CFBundle* CFBundleRef;
typedef UInt32 CFTypeID;
typedef SInt32 CFIndex;
typedef UInt32 CFStringEncoding;
typedef UInt32 CFStringCompareFlags;
typedef SInt32 CFComparisonResult;

enum { kCFStringEncodingASCII = 0x0600, kCFStringEncodingUTF8 = 0x08000100 };
enum { kCFCompareCaseInsensitive = 1 };
enum { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };

TOOLBOX_EXPORT CFTypeRef CFRetain(CFTypeRef object);
TOOLBOX_EXPORT void CFRelease(CFTypeRef object);
TOOLBOX_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);
TOOLBOX_EXPORT CFTypeID CFStringGetTypeID(void);
TOOLBOX_EXPORT CFTypeID CFArrayGetTypeID(void);
TOOLBOX_EXPORT CFTypeID CFDictionaryGetTypeID(void);

/* A string from zero-terminated text; null if a byte does not fit the encoding (ASCII: above 127;
 * UTF-8: malformed) or the encoding is unknown. */
TOOLBOX_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                     CFStringEncoding encoding);
/* Compares by code; with kCFCompareCaseInsensitive the case of ASCII letters does not count. */
TOOLBOX_EXPORT CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b,
                                                  CFStringCompareFlags flags);
/* Copies the text, zero-terminated, into `buffer`; false if it does not fit `bufferSize` bytes or
 * the encoding. */
TOOLBOX_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                                          CFStringEncoding encoding);
TOOLBOX_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
TOOLBOX_EXPORT CFTypeRef CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
/* The value for a string key, null if there is none. */
TOOLBOX_EXPORT CFTypeRef CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);

TOOLBOX_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                                const UInt8* bytes, CFIndex length,
                                                                Boolean isDirectory);
/* The bundle at a directory: reads Contents/Info.plist (an XML or binary property list). Null if
 * the directory is none or has no readable dictionary there. */
TOOLBOX_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
/* A value of the information dictionary by its top-level key; null if there is none. */
TOOLBOX_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

TOOLBOX_END_DECLS

#endif

/* SPDX-License-Identifier: MIT
 *
 * Reading the bytes of an object, for code that holds only the object. Each function does what
 * the operation of its name of the object's data source does: see VornDataSource.h. Exceptions
 * pass through; the entry points catch them.
 */
#ifndef VORN_DATASOURCE_READINGFUNCTIONS_H
#define VORN_DATASOURCE_READINGFUNCTIONS_H

#include "src/plugin/VornPluginABI.h"

TOOLBOX_BEGIN_DECLS

VORN_EXPORT OSErr ReadBytes(VornPlugin* plugin, SInt32 count, void* dest, unsigned char advance);
VORN_EXPORT OSErr ReadAvailableBytes(VornPlugin* plugin, SInt32* count, void* dest,
                                     unsigned char advance);
VORN_EXPORT OSErr ReadByteStream(VornPlugin* plugin, SInt32* count, void* dest,
                                 unsigned char advance);
VORN_EXPORT void ReadUChar(VornPlugin* plugin, UInt8* out, unsigned char advance);
VORN_EXPORT void ReadChar(VornPlugin* plugin, char* out, unsigned char advance);
VORN_EXPORT void ReadShort(VornPlugin* plugin, SInt16* out, unsigned char advance);
VORN_EXPORT void ReadUShort(VornPlugin* plugin, UInt16* out, unsigned char advance);
VORN_EXPORT void ReadLong(VornPlugin* plugin, SInt32* out, unsigned char advance);
VORN_EXPORT void ReadULong(VornPlugin* plugin, UInt32* out, unsigned char advance);
VORN_EXPORT void ReadULongNative(VornPlugin* plugin, UInt32* out, unsigned char advance);
VORN_EXPORT void SkipBytes(VornPlugin* plugin, SInt32 n);
VORN_EXPORT void SkipTo(VornPlugin* plugin, UInt8 target, SInt32* skipped, unsigned char advance);
VORN_EXPORT void SkipToOffset(VornPlugin* plugin, SInt32 offset);
VORN_EXPORT void SkipToOffsetFromBufferEnd(VornPlugin* plugin, SInt32 n);
VORN_EXPORT SInt32 GetReadOffset(VornPlugin* plugin);

TOOLBOX_END_DECLS

#endif

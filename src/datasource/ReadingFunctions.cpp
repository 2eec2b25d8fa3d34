// SPDX-License-Identifier: MIT
#include "src/datasource/ReadingFunctions.h"

#include "src/datasource/VornDataSource.h"
#include "src/plugin/VornPlugin.h"

OSErr ReadBytes(VornPlugin* plugin, SInt32 count, void* dest, unsigned char advance)
{
    return plugin->dataSource->ReadBytes(count, dest, advance);
}

OSErr ReadAvailableBytes(VornPlugin* plugin, SInt32* count, void* dest, unsigned char advance)
{
    return plugin->dataSource->ReadAvailableBytes(count, dest, advance);
}

OSErr ReadByteStream(VornPlugin* plugin, SInt32* count, void* dest, unsigned char advance)
{
    return plugin->dataSource->ReadByteStream(count, dest, advance);
}

void ReadUChar(VornPlugin* plugin, UInt8* out, unsigned char advance)
{
    plugin->dataSource->ReadUChar(out, advance);
}

void ReadChar(VornPlugin* plugin, char* out, unsigned char advance)
{
    plugin->dataSource->ReadChar(out, advance);
}

void ReadShort(VornPlugin* plugin, SInt16* out, unsigned char advance)
{
    plugin->dataSource->ReadShort(out, advance);
}

void ReadUShort(VornPlugin* plugin, UInt16* out, unsigned char advance)
{
    plugin->dataSource->ReadUShort(out, advance);
}

void ReadLong(VornPlugin* plugin, SInt32* out, unsigned char advance)
{
    plugin->dataSource->ReadLong(out, advance);
}

void ReadULong(VornPlugin* plugin, UInt32* out, unsigned char advance)
{
    plugin->dataSource->ReadULong(out, advance);
}

void ReadULongNative(VornPlugin* plugin, UInt32* out, unsigned char advance)
{
    plugin->dataSource->ReadULongNative(out, advance);
}

void SkipBytes(VornPlugin* plugin, SInt32 n)
{
    plugin->dataSource->SkipBytes(n);
}

void SkipTo(VornPlugin* plugin, UInt8 target, SInt32* skipped, unsigned char advance)
{
    plugin->dataSource->SkipTo(target, skipped, advance);
}

void SkipToOffset(VornPlugin* plugin, SInt32 offset)
{
    plugin->dataSource->SkipToOffset(offset);
}

void SkipToOffsetFromBufferEnd(VornPlugin* plugin, SInt32 n)
{
    plugin->dataSource->SkipToOffsetFromBufferEnd(n);
}

SInt32 GetReadOffset(VornPlugin* plugin)
{
    return plugin->dataSource->readOffset;
}

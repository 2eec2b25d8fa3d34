// SPDX-License-Identifier: MIT
#include "src/datasource/VornDataSource.h"

#include "src/plugin/VornPluginABI.h"

#include <cstring>

namespace
{

// Skips are not checked and a file's numbers may be anything, so offsets wrap around.
SInt32 Plus(SInt32 a, SInt32 b)
{
    return static_cast<SInt32>(static_cast<UInt32>(a) + static_cast<UInt32>(b));
}

SInt32 Minus(SInt32 a, SInt32 b)
{
    return static_cast<SInt32>(static_cast<UInt32>(a) - static_cast<UInt32>(b));
}

UInt16 LittleEndian16(const UInt8* bytes)
{
    return static_cast<UInt16>(bytes[0] | bytes[1] << 8);
}

UInt32 LittleEndian32(const UInt8* bytes)
{
    return LittleEndian16(bytes) | static_cast<UInt32>(LittleEndian16(bytes + 2)) << 16;
}

} // namespace

void VornDataSource::PrepareDataSource() {}

void VornDataSource::TerminateDataSource() {}

OSErr VornDataSource::ReadBytes(SInt32 count, void* dest, unsigned char advance)
{
    return ReadAvailableBytes(&count, dest, advance);
}

OSErr VornDataSource::ReadAvailableBytes(SInt32* count, void* dest, unsigned char advance)
{
    lastError = GetBytes(dest, readOffset, count);
    if (advance)
        SkipBytes(*count);
    return lastError;
}

OSErr VornDataSource::ReadByteStream(SInt32* count, void* dest, unsigned char)
{
    return ReadAvailableBytes(count, dest, true);
}

// The next `width` bytes. A source without a cache has no address to give.
const UInt8* VornDataSource::TakeBytes(SInt32 width, unsigned char advance)
{
    const UInt8* bytes = GetBytesDataPtr(readOffset, width);
    if (!bytes)
        throw OSErr{kDataOutOfRangeErr};
    if (advance)
        SkipBytes(width);
    return bytes;
}

void VornDataSource::ReadUChar(UInt8* out, unsigned char advance)
{
    *out = *TakeBytes(1, advance);
}

void VornDataSource::ReadChar(char* out, unsigned char advance)
{
    *out = static_cast<char>(*TakeBytes(1, advance));
}

void VornDataSource::ReadShort(SInt16* out, unsigned char advance)
{
    *out = static_cast<SInt16>(LittleEndian16(TakeBytes(2, advance)));
}

void VornDataSource::ReadUShort(UInt16* out, unsigned char advance)
{
    *out = LittleEndian16(TakeBytes(2, advance));
}

void VornDataSource::ReadLong(SInt32* out, unsigned char advance)
{
    *out = static_cast<SInt32>(LittleEndian32(TakeBytes(4, advance)));
}

void VornDataSource::ReadULong(UInt32* out, unsigned char advance)
{
    *out = LittleEndian32(TakeBytes(4, advance));
}

void VornDataSource::ReadULongNative(UInt32* out, unsigned char advance)
{
    std::memcpy(out, TakeBytes(4, advance), sizeof *out);
}

void VornDataSource::SkipBytes(SInt32 n)
{
    readOffset = Plus(readOffset, n);
}

void VornDataSource::SkipToOffset(SInt32 offset)
{
    readOffset = offset;
}

void VornDataSource::SkipTo(UInt8 target, SInt32* skipped, unsigned char advance)
{
    const SInt32 start = readOffset;
    SInt32 counter = 0;
    auto byte = static_cast<UInt8>(~target); // a read that fails leaves it alone
    do {
        counter = Plus(counter, 1);
        ReadBytes(1, &byte, true);
    } while (byte != target);
    readOffset = advance ? Minus(readOffset, 1) : start;
    *skipped = Minus(counter, 1);
}

void VornDataSource::SkipToOffsetFromBufferEnd(SInt32 n)
{
    SInt32 count = 0;
    lastError = FetchDataFromSource(nullptr, Minus(0, n), &count, true);
    readOffset = Minus(dataSize, n);
}

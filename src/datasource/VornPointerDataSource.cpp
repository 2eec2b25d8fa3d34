// SPDX-License-Identifier: MIT
#include "src/datasource/VornPointerDataSource.h"

#include "src/datasource/MemoryFetch.h"
#include "src/plugin/VornPluginABI.h"

VornPointerDataSource::VornPointerDataSource(void* data, SInt32 size)
    : dataPtr(static_cast<UInt8*>(data))
{
    dataSize = size;
}

VornPointerDataSource::~VornPointerDataSource()
{
    dataPtr = nullptr;
}

OSErr VornPointerDataSource::GetBytes(void* dest, SInt32 offset, SInt32* count)
{
    return FetchDataFromSource(dest, offset, count, false);
}

UInt8* VornPointerDataSource::GetBytesDataPtr(SInt32 offset, SInt32 length)
{
    if (SInt64{offset} + length > dataSize) {
        lastError = kDataOutOfRangeErr;
        throw lastError;
    }
    return dataPtr + offset;
}

OSErr VornPointerDataSource::FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                                                 unsigned char mustHaveAll)
{
    return FetchFromMemory(dataPtr, dataSize, dest, offset, count, mustHaveAll);
}

// SPDX-License-Identifier: MIT
#include "src/datasource/VornHandleDataSource.h"

#include "src/datasource/MemoryFetch.h"
#include "src/plugin/VornPluginABI.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>

VornHandleDataSource::VornHandleDataSource(Handle handle, SInt32 size) : dataHandle(handle)
{
    dataSize = size;
}

VornHandleDataSource::~VornHandleDataSource()
{
    dataHandle = nullptr;
}

SInt32 VornHandleDataSource::Limit() const
{
    return std::min(dataSize, GetHandleSize(dataHandle));
}

OSErr VornHandleDataSource::GetBytes(void* dest, SInt32 offset, SInt32* count)
{
    return FetchDataFromSource(dest, offset, count, false);
}

UInt8* VornHandleDataSource::GetBytesDataPtr(SInt32 offset, SInt32 length)
{
    if (!dataHandle || SInt64{offset} + length > Limit()) {
        lastError = kDataOutOfRangeErr;
        throw lastError;
    }
    return reinterpret_cast<UInt8*>(*dataHandle) + offset;
}

OSErr VornHandleDataSource::FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                                                unsigned char mustHaveAll)
{
    // No handle is as good as an empty one.
    const char* data = dataHandle ? *dataHandle : nullptr;
    return FetchFromMemory(data, Limit(), dest, offset, count, mustHaveAll);
}

// SPDX-License-Identifier: MIT
#include "src/datasource/VornPluginDataSource.h"

#include "src/plugin/VornPluginABI.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr SInt32 kDefaultCacheCapacity = 4096;

// Keeps a block in its place for a scope.
class LockedBlock
{
public:
    explicit LockedBlock(Handle blockHandle) : handle(blockHandle), state(HGetState(blockHandle))
    {
        HLock(handle);
    }
    ~LockedBlock() { HSetState(handle, state); }
    LockedBlock(const LockedBlock&) = delete;
    LockedBlock& operator=(const LockedBlock&) = delete;

private:
    Handle handle;
    SInt8 state;
};

} // namespace

VornPluginDataSource::VornPluginDataSource(VornPlugin& ownPlugin) : plugin(ownPlugin) {}

VornPluginDataSource::~VornPluginDataSource()
{
    RemoveDataCache();
}

void VornPluginDataSource::PrepareDataSource()
{
    CreateDataCache(0, kDefaultCacheCapacity);
}

void VornPluginDataSource::TerminateDataSource()
{
    RemoveDataCache();
}

OSErr VornPluginDataSource::FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                                                unsigned char mustHaveAll)
{
    const OSErr err = CallPluginHostGetData(&plugin, dest, offset, count, &dataSize, &dataComplete);
    if (err == kDataNotAvailableErr && !mustHaveAll)
        return err;
    if (err != noErr)
        throw err;
    return noErr;
}

OSErr VornPluginDataSource::CreateDataCache(SInt32 offset, SInt32 size)
{
    Handle block = NewHandle(size);
    if (!block || MemError() != noErr) {
        DisposeHandle(block);
        return memFullErr;
    }
    RemoveDataCache();
    cacheHandle = block;
    cacheStart = offset;
    cacheCapacity = size;
    SInt32 count = size;
    const OSErr err = FillDataCache(offset, &count);
    return err == kDataNotAvailableErr ? OSErr{noErr} : err;
}

OSErr VornPluginDataSource::FillDataCache(SInt32 offset, SInt32* count)
{
    const OSErr err = cacheHandle ? FetchIntoCache(offset, count) : AskForSize(offset, count);
    cacheStart = offset;
    cacheLength = *count;
    return err;
}

OSErr VornPluginDataSource::FetchIntoCache(SInt32 offset, SInt32* count)
{
    const LockedBlock lock(cacheHandle);
    return FetchDataFromSource(*cacheHandle, offset, count, false);
}

// There is no block to fill; the host is only asked how long the data are.
OSErr VornPluginDataSource::AskForSize(SInt32 offset, SInt32* count)
{
    *count = 0;
    return FetchDataFromSource(nullptr, offset, count, false);
}

void VornPluginDataSource::RemoveDataCache()
{
    if (cacheHandle)
        DisposeHandle(cacheHandle);
    cacheHandle = nullptr;
    cacheStart = cacheCapacity = cacheLength = 0;
}

bool VornPluginDataSource::CacheHolds(SInt32 offset, SInt32 count) const
{
    const SInt64 end = SInt64{offset} + count;
    return cacheStart <= offset && offset < CacheEnd() && cacheStart <= end && end <= CacheEnd();
}

UInt8* VornPluginDataSource::CachedBytes(SInt32 offset) const
{
    return reinterpret_cast<UInt8*>(*cacheHandle) + (offset - cacheStart);
}

void VornPluginDataSource::CopyFromCache(void* dest, SInt32 offset, SInt32 count) const
{
    if (count > 0)
        std::memmove(dest, CachedBytes(offset), static_cast<std::size_t>(count));
}

OSErr VornPluginDataSource::GetBytes(void* dest, SInt32 offset, SInt32* count)
{
    if (CacheHolds(offset, *count)) {
        CopyFromCache(dest, offset, *count);
        return noErr;
    }
    if (*count > cacheCapacity)
        return FetchDataFromSource(dest, offset, count, false);
    SInt32 filled = cacheCapacity;
    const OSErr err = FillDataCache(offset, &filled);
    if (dataComplete)
        *count = static_cast<SInt32>(std::min<SInt64>(*count, CacheEnd() - offset));
    if (!CacheHolds(offset, *count))
        return err;
    CopyFromCache(dest, offset, *count);
    return noErr;
}

UInt8* VornPluginDataSource::GetBytesDataPtr(SInt32 offset, SInt32 length)
{
    if (length > cacheCapacity || !cacheHandle)
        return nullptr;
    const auto held = [&] { return offset >= cacheStart && SInt64{offset} + length <= CacheEnd(); };
    if (!held()) {
        SInt32 count = cacheCapacity;
        FillDataCache(offset, &count);
    }
    if (!held()) {
        lastError = kDataOutOfRangeErr;
        throw lastError;
    }
    return CachedBytes(offset);
}

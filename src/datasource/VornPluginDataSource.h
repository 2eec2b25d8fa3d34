// SPDX-License-Identifier: MIT
//
// The data source over the host's stream, with one read cache.
#pragma once

#include "src/datasource/VornDataSource.h"

class VornPlugin;

// Every fetch asks the host for the bytes of `plugin`, which may take time and yield. What the
// host answers: 0 is taken as success, kDataNotAvailableErr is returned, or thrown if the caller
// must have all; any other code is thrown. The cache holds one stretch of the data, which always
// starts where the read that missed it started.
class VornPluginDataSource : public VornDataSource
{
public:
    explicit VornPluginDataSource(VornPlugin& ownPlugin);
    ~VornPluginDataSource() override;

    // Makes a cache of 4096 bytes and fills it from the start of the data. Without memory the
    // source works on without a cache.
    void PrepareDataSource() override;
    void TerminateDataSource() override;
    // With a cache of *count bytes at least the cache is refilled from `offset` on if it does not
    // hold all of them, and *count is cut to the end of the data once that is known. A larger
    // request goes straight to the host.
    OSErr GetBytes(void* dest, SInt32 offset, SInt32* count) override;
    // Null, without an error, for more bytes than the cache can hold.
    UInt8* GetBytesDataPtr(SInt32 offset, SInt32 length) override;
    OSErr FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                              unsigned char mustHaveAll) override;

    // Makes a cache of `size` bytes and fills it from `offset` on; that nothing has arrived there
    // yet is no error. memFullErr, nothing changed, without memory.
    OSErr CreateDataCache(SInt32 offset, SInt32 size);
    // Fills the cache with up to *count bytes from `offset` on; *count becomes their number.
    OSErr FillDataCache(SInt32 offset, SInt32* count);
    void RemoveDataCache();

    VornPlugin& plugin;
    Handle cacheHandle = nullptr; // owned, unlocked but while it is filled
    SInt32 cacheStart = 0;        // data offset of the first byte
    SInt32 cacheCapacity = 0;     // size of the block
    SInt32 cacheLength = 0;       // valid bytes

private:
    OSErr FetchIntoCache(SInt32 offset, SInt32* count);
    OSErr AskForSize(SInt32 offset, SInt32* count);
    SInt64 CacheEnd() const { return SInt64{cacheStart} + cacheLength; }
    bool CacheHolds(SInt32 offset, SInt32 count) const;
    UInt8* CachedBytes(SInt32 offset) const;
    void CopyFromCache(void* dest, SInt32 offset, SInt32 count) const;
};

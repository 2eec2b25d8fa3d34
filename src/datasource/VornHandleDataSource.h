// SPDX-License-Identifier: MIT
//
// A data source over a relocatable block.
#pragma once

#include "src/datasource/VornDataSource.h"

// The handle belongs to the caller, who may resize it: the data ends at `size` bytes or at the
// handle's present size, whichever is less.
class VornHandleDataSource : public VornDataSource
{
public:
    VornHandleDataSource(Handle handle, SInt32 size);
    ~VornHandleDataSource() override;

    OSErr GetBytes(void* dest, SInt32 offset, SInt32* count) override;
    // The handle is not locked: the address is good until memory may move. A negative offset is
    // not refused: the address then lies before the block. A null handle has no addresses at all.
    UInt8* GetBytesDataPtr(SInt32 offset, SInt32 length) override;
    // A request for more than half of what remains is cut short: see MemoryFetch.h.
    OSErr FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                              unsigned char mustHaveAll) override;

    Handle dataHandle;

private:
    SInt32 Limit() const;
};

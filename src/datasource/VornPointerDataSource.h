// SPDX-License-Identifier: MIT
//
// A data source over a plain block in memory.
#pragma once

#include "src/datasource/VornDataSource.h"

// The block belongs to the caller and stays where it is while the source lives. `size` is its
// length in bytes.
class VornPointerDataSource : public VornDataSource
{
public:
    VornPointerDataSource(void* data, SInt32 size);
    ~VornPointerDataSource() override;

    OSErr GetBytes(void* dest, SInt32 offset, SInt32* count) override;
    // A negative offset is not refused: the address then lies before the block.
    UInt8* GetBytesDataPtr(SInt32 offset, SInt32 length) override;
    // A request for more than half of what remains is cut short: see MemoryFetch.h.
    OSErr FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                              unsigned char mustHaveAll) override;

    UInt8* dataPtr;
};

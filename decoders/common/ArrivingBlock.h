// SPDX-License-Identifier: MIT
#pragma once

#include "src/datasource/ReadingFunctions.h"
#include "toolbox/Errors.h"

#include <algorithm>

// The next bytes of an object's data, as many as have arrived. Reading them waits, and may let
// other threads run, until there are any or the data have ended.
struct ArrivingBlock {
    // More than the data source keeps for small reads, so it hands through whatever is there.
    static constexpr SInt32 kSize = 16384;

    // Reads up to kSize bytes to `dest`; throws what the host fails with.
    ArrivingBlock(VornPlugin& object, UInt8* dest)
    {
        SInt32 read = kSize;
        isLast = ReadAvailableBytes(&object, &read, dest, true) != noErr;
        count = static_cast<size_t>(std::max(read, SInt32{0}));
    }

    size_t count = 0;
    bool isLast = false; // the data end with it
};

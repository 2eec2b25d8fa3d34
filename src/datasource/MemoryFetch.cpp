// SPDX-License-Identifier: MIT
#include "src/datasource/MemoryFetch.h"

#include "src/plugin/VornPluginABI.h"
#include "toolbox/Errors.h"

#include <algorithm>
#include <cstring>

namespace
{

// True if all of *count was there.
bool CopyWhatFits(const void* data, SInt32 limit, void* dest, SInt32 offset, SInt32* count)
{
    if (offset >= limit)
        return false;
    const SInt64 requested = *count;
    const SInt64 n = std::min(requested, limit - (offset + requested));
    if (n > 0)
        std::memmove(dest, static_cast<const UInt8*>(data) + offset, static_cast<std::size_t>(n));
    if (n >= requested)
        return true;
    *count = static_cast<SInt32>(n);
    return false;
}

} // namespace

OSErr FetchFromMemory(const void* data, SInt32 limit, void* dest, SInt32 offset, SInt32* count,
                      unsigned char mustHaveAll)
{
    if (offset < 0)
        return kDataOutOfRangeErr;
    if (CopyWhatFits(data, limit, dest, offset, count))
        return noErr;
    if (mustHaveAll)
        throw OSErr{kDataNotAvailableErr};
    return kDataNotAvailableErr;
}

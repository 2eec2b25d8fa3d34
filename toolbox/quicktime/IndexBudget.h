// SPDX-License-Identifier: MIT
//
// How much of a movie may be gone through ahead of the playing while its data is still coming in:
// as much as any network brings, but not as much as memory or a disk does, so that taking in does
// not hold up the arrival itself.
#pragma once

#include "toolbox/Types.h"

#include <algorithm>

namespace toolbox
{

class IndexBudget
{
public:
    // The bytes that may be taken in at `clock` (microseconds).
    SInt64 At(SInt64 clock)
    {
        left_ = std::min(kMost, left_ + (clock - clock_) * kBytesPerMicrosecond);
        clock_ = clock;
        return left_;
    }
    void Spend(SInt64 bytes) { left_ -= bytes; }
    // When there is something to spend again, if there is nothing now.
    SInt64 NextTime() const { return clock_ + (kWorthwhile - left_) / kBytesPerMicrosecond; }

    // Less than this is not worth a slice.
    static constexpr SInt64 kWorthwhile = SInt64{16} * 1024;

private:
    static constexpr SInt64 kMost = SInt64{1024} * 1024;
    static constexpr SInt64 kBytesPerMicrosecond = 16; // 16 MB a second
    SInt64 left_ = kMost;
    SInt64 clock_ = 0;
};

} // namespace toolbox

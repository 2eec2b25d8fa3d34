// SPDX-License-Identifier: MIT
//
// Frames of MPEG audio found by their headers alone, for sound that is only a few frames long.
#pragma once

#include "toolbox/quicktime/LibAV.h"
#include "toolbox/quicktime/MpegAudioHeader.h"

#include <functional>

namespace toolbox
{

class BareFrames
{
public:
    explicit BareFrames(SInt64 start) : offset_(start) {}

    // Reads bytes at an offset; 0 or less at the end.
    using Reader = std::function<SInt32(UInt8* to, SInt64 offset, SInt32 count)>;
    // Makes `packet` the next whole frame; false when there is none.
    bool ReadNext(AVPacket& packet, const Reader& read);

private:
    SInt64 offset_;
};

} // namespace toolbox

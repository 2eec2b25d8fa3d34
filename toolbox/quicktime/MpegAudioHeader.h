// SPDX-License-Identifier: MIT
//
// The header of an MPEG audio frame, ISO 11172-3 2.4.1.3 and its extensions to lower rates.
#pragma once

#include "toolbox/Types.h"

#include <optional>

namespace toolbox
{

struct MpegAudioHeader {
    size_t size = 0; // bytes of the whole frame
    UInt32 sampleRate = 0;
    UInt32 samples = 0;   // sample frames
    UInt32 fixedBits = 0; // sync, version, layer and sample rate: the same in every frame
};

constexpr size_t kMpegAudioHeaderSize = 4;

// None if the four bytes are no header, or one of a frame without a bit rate of its own.
std::optional<MpegAudioHeader> ParseMpegAudioHeader(const UInt8* p);

} // namespace toolbox

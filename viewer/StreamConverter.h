// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <vector>

namespace viewer
{

struct SoundFormat {
    SInt32 rate = 0; // frames a second
    SInt32 channels = 0;

    bool operator==(const SoundFormat&) const = default;
};

// Brings a stream of 16-bit sound to another rate and number of channels, block after block.
// Equal formats pass unchanged.
class StreamConverter
{
public:
    StreamConverter(SoundFormat from, SoundFormat to);

    // `count` frames in; the frames that they complete out, channels in turn.
    std::vector<SInt16> Convert(const SInt16* frames, SInt32 count);

private:
    std::vector<SInt16> MapChannels(const SInt16* frames, SInt32 count) const;
    SInt16 MappedSample(const SInt16* frame, SInt32 channel) const;
    std::vector<SInt16> Resample(const std::vector<SInt16>& frames);

    SoundFormat from_;
    SoundFormat to_;
    // The last frame of the block before, with the channels of the output; empty at the start.
    std::vector<SInt16> last_;
    // Where the next output frame lies behind that one, in units of an input frame / to_.rate.
    SInt64 position_ = 0;
};

} // namespace viewer

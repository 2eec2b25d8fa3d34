// SPDX-License-Identifier: MIT
//
// What the headers in a packet of MPEG-1 or MPEG-2 pictures say (ISO 11172-2, ISO 13818-2).
#pragma once

#include "toolbox/quicktime/LibAV.h"

#include <span>

namespace toolbox
{

enum class PictureCoding {
    kNone,         // no picture begins in the packet: the rest of one, or nothing
    kIntra,        // needs no other picture
    kPredicted,    // needs one before it
    kBidirectional // may need one before and one after it; no other picture needs it
};

bool IsMpegVideo(AVCodecID codec);

// How the first picture of a packet is coded. Of pictures that are not MPEG, libavformat's word
// is taken for which can be decoded alone.
PictureCoding CodingOf(const AVPacket& packet, AVCodecID codec);

// The sequence header with its extensions; empty if the packet has none.
std::span<const UInt8> SequenceHeaderOf(const AVPacket& packet, AVCodecID codec);

// Whether the packet begins a group of pictures that needs nothing of the one before it.
bool BeginsClosedGroup(const AVPacket& packet, AVCodecID codec);

} // namespace toolbox

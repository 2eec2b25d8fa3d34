// SPDX-License-Identifier: MIT
//
// Places in a movie's data at which reading and decoding can begin.
#pragma once

#include "toolbox/quicktime/LibAV.h"

#include <memory>
#include <string_view>
#include <vector>

namespace toolbox
{

// A place to begin reading at. Its first packets may be the rest of something.
struct ReadPlace {
    SInt64 position = 0;        // in bytes
    Nanoseconds time = 0;       // what begins there first
    Nanoseconds stampShift = 0; // what the time line adds to the stamps in the data
    SInt64 pictures = 0;        // pictures that begin before it
};

// What a packet holds, to know it again.
struct PacketMark {
    explicit PacketMark(const AVPacket& packet)
        : size(packet.size),
          digest(std::hash<std::string_view>{}(
              {reinterpret_cast<const char*>(packet.data), static_cast<size_t>(packet.size)}))
    {
    }
    PacketMark() = default;
    bool operator==(const PacketMark&) const = default;
    int size = 0;
    size_t digest = 0;
};

// A picture that can be decoded without those before it. Where reading begins a little before it,
// it is known again by what it holds: positions of packets depend on how the bytes were read.
struct KeyPicture {
    PacketMark mark;
    SInt64 number = 0; // pictures that begin before it
    // The sequence header in force, if the picture has none of its own.
    std::shared_ptr<const std::vector<UInt8>> header;
};

// A place to begin decoding at.
struct KeySample {
    Nanoseconds time = 0;    // when it is shown or sounds
    ReadPlace from;          // where to read for it
    KeyPicture picture;      // where there are pictures
    bool isBeginning = true; // of the movie: everything read is decoded
};

} // namespace toolbox

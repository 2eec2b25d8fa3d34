// SPDX-License-Identifier: MIT
//
// What kind of MPEG data a stream of bytes is, told from its first bytes.
#pragma once

#include "toolbox/Types.h"

#include <string>

namespace toolbox
{

enum class StreamKind {
    kUnknown,
    kProgramStream,   // ISO 11172-1 or 13818-1 packs and packets
    kTransportStream, // ISO 13818-1, 188-byte packets
    kVideo,           // elementary video, ISO 11172-2 or 13818-2
    kAudio            // elementary audio, ISO 11172-3 or 13818-3, layers 1 to 3
};

struct Sniffed {
    StreamKind kind = StreamKind::kUnknown;
    SInt64 start = 0; // offset, within the bytes looked at, at which the data begins
};

// Whether the declared type or the name says that the data is sound.
bool SoundIsExpected(const std::string& mimeType, const std::string& fileName);

// Looks for the first place in `bytes` where a stream can begin. With `expectSound` audio frames
// are looked for first, else video. `isAll`: the data ends where the bytes do.
Sniffed Sniff(const UInt8* bytes, size_t count, bool expectSound, bool isAll);

// Bytes taken by an ID3v2 tag (ID3v2.2 to 2.4) that begins at `bytes`, of which at least 10 must
// be there; 0 if there is none.
SInt64 TagSize(const UInt8* bytes);
constexpr size_t kTagHeaderSize = 10;

} // namespace toolbox

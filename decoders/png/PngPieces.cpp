// SPDX-License-Identifier: MIT
#include "decoders/png/PngPieces.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr size_t kHeader = 8; // a chunk's length and type
constexpr UInt64 kCheckSum = 4;
// Smaller ones cost time; a row or two wait for the rest of theirs.
constexpr UInt64 kImageData = 1024;

} // namespace

size_t PngPieces::Next(std::span<const UInt8> bytes)
{
    if (left_ == 0) {
        if (bytes.size() < kHeader)
            return kHeader;
        BeginChunk(bytes);
    }
    return static_cast<size_t>(std::min(left_, isImageData_ ? kImageData : UInt64{bytes.size()}));
}

void PngPieces::BeginChunk(std::span<const UInt8> bytes)
{
    constexpr UInt8 kType[] = {'I', 'D', 'A', 'T'};
    UInt64 length = 0;
    for (const UInt8 byte : bytes.first(4))
        length = length << 8 | byte;
    left_ = kHeader + length + kCheckSum;
    isImageData_ = std::equal(std::begin(kType), std::end(kType), bytes.begin() + 4);
}

// SPDX-License-Identifier: MIT
//
// Damaged files that arrive in pieces: they end in the same pixels, and with the same result, as if
// all had been there at once.
#pragma once

#include "tests/support/HostedImage.h"

#include <deque>
#include <random>
#include <vector>

namespace test
{

struct DamagedFile {
    const ImageBundle& bundle;
    const std::vector<UInt8>& bytes;
    // Of the image.
    UInt32 width;
    UInt32 height;
};

struct End {
    OSErr result = 0;
    Picture picture;
    bool operator==(const End&) const = default;
};

// What comes of it when so many bytes arrive at a time.
End EndOf(const DamagedFile& file, const std::deque<SInt32>& pieces);

// Pieces of up to `largest` bytes that are a file of that size.
std::deque<SInt32> Pieces(size_t size, UInt32 largest, std::minstd_rand& random);

void ExpectTheSameInPieces(const DamagedFile& file, std::minstd_rand& random);

} // namespace test

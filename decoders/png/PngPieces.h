// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <cstddef>
#include <span>

// Where to cut a PNG file's bytes for libpng. It hands a row over when a piece ends with it, but
// drops it if the same piece goes on to what cannot be inflated, and what of the last rows it
// inflates depends on the last piece as well. So that a damaged image ends in the same rows however
// it arrived, image data are cut at places that only the file decides on.
class PngPieces
{
public:
    // How many bytes the next piece has; `bytes` are those of the file that come next, at least
    // one. There may be fewer: the piece waits for the others, unless the file ends before.
    size_t Next(std::span<const UInt8> bytes);
    // That many have been taken, no more than the piece has.
    void Take(size_t count) { left_ -= count < left_ ? count : left_; }

private:
    void BeginChunk(std::span<const UInt8> bytes);

    UInt64 left_ = 8; // of the chunk, or of the signature at first
    bool isImageData_ = false;
};

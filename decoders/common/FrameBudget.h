// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

// How much memory the frames of one image may take, all together. A file of a few bytes can ask
// for gigabytes, so a decoder asks here before it adds a frame.
class FrameBudget
{
public:
    // What applies where the environment does not say otherwise: 512 MiB.
    static constexpr UInt64 kDefaultLimit = UInt64{512} << 20;

    // As many bytes as the environment variable VORN_IMAGE_BYTES says (a decimal number; anything
    // else counts as not set).
    FrameBudget();
    explicit FrameBudget(UInt64 limitInBytes) : limit_(limitInBytes) {}

    // Whether pixel maps can have that size at all: coordinates are signed 16-bit numbers, and the
    // bytes of a row fit 16 bits. An empty one does not fit.
    static bool FitsCoordinates(UInt64 width, UInt64 height, UInt16 depth);
    // The memory of a frame, its mask included (a mask depth of 0: none).
    static UInt64 BytesOf(UInt64 width, UInt64 height, UInt16 depth, UInt16 maskDepth = 0);

    // Whether a frame fits the coordinates, and what is left.
    bool Allows(UInt64 width, UInt64 height, UInt16 depth, UInt16 maskDepth = 0) const;
    // Takes the memory of a frame from what is left; memFullErr is thrown, and nothing taken, for
    // one that is not allowed.
    void Take(UInt64 width, UInt64 height, UInt16 depth, UInt16 maskDepth = 0);
    // The same for other memory that grows with the image, such as a library's own.
    void TakeBytes(UInt64 bytes);
    UInt64 Left() const { return limit_ - taken_; }

private:
    UInt64 limit_;
    UInt64 taken_ = 0;
};

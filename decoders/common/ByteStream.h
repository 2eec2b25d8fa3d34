// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/ArrivingBlock.h"

#include <array>

// An object's data for a decoder that asks for bytes, any number at a time, while they arrive.
class ByteStream
{
public:
    explicit ByteStream(VornPlugin& object) : object_(object) {}

    // Reads `count` bytes and waits for them; fewer only at the end of the data. Tells how many,
    // and throws what the host fails with.
    size_t Read(UInt8* dest, size_t count);
    // Reads all of them, or throws kDataNotAvailableErr. Words have their low byte first.
    void ReadAll(UInt8* dest, size_t count);
    UInt8 NextByte();
    UInt16 NextWord();
    // Whether that many can be read without asking the host.
    bool HasAtHand(size_t count) const { return end_ - next_ >= count; }
    // Whether more have been asked for than there are.
    bool RanOut() const { return ranOut_; }

private:
    VornPlugin& object_;
    size_t next_ = 0; // of the bytes in the buffer
    size_t end_ = 0;
    bool isLastBlock_ = false;
    bool ranOut_ = false;
    std::array<UInt8, ArrivingBlock::kSize> buffer_;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <array>
#include <span>
#include <vector>

// Makes rows of indices of the codes in an image's data, as far as these have arrived.
//
// A code stands for an index, or for the string of an earlier code and one index more. Strings are
// kept and put down eight indices at a time, and not one by one as they hang together.
class LzwDecoder
{
public:
    // Whether an index may have so many bits. Beyond 8 there are codes that no index has.
    static bool CanHaveBits(int bits) { return bits >= 1 && bits < kMostBits; }

    // Begins an image, whatever is left of the last one. Only here memory is asked for.
    void Start(int bits, size_t rowSize);
    // The next row, until the next call; null where more data are needed, or codes have ended.
    const UInt8* NextRow();
    // Data that follow, once there is no row without them. They have to stay until then again.
    void Add(std::span<const UInt8> data) { data_ = data; }
    // By the code for it, or by one that cannot be.
    bool HasEnded() const { return hasEnded_; }

private:
    static constexpr int kMostBits = 12;
    static constexpr UInt32 kMostCodes = 1 << kMostBits;
    static constexpr UInt32 kNone = kMostCodes;
    static constexpr size_t kPart = 8;
    // No string is longer than there are codes, nor put down with more than a part too much.
    static constexpr size_t kRoom = kMostCodes + kPart;
    static constexpr size_t kRowsAhead = 16384;

    struct String {
        std::array<UInt8, kPart> tail; // the last 1 to 8 indices
        UInt16 before;                 // the code for those before them, eight or a multiple
        UInt16 length;
        UInt8 first;
    };

    void Clear();
    void Unpack();
    bool Fetch(int bits);
    bool Learn(UInt32 code);
    UInt8* Put(UInt32 code, UInt8* to) const;

    std::vector<String> strings_;
    std::vector<UInt8> indices_;
    size_t begin_ = 0; // of the indices that are no rows yet
    size_t end_ = 0;
    size_t rowSize_ = 0;
    std::span<const UInt8> data_;
    UInt64 bits_ = 0; // of the data, the next ones lowest
    int bitCount_ = 0;
    int rootBits_ = 0;
    int codeBits_ = 0;
    UInt32 nextCode_ = 0; // the one that gets a string next
    UInt32 last_ = kNone; // the code before
    bool hasEnded_ = false;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <span>
#include <string>
#include <vector>

// Reads a fuzzer's bytes as decisions, one after the other. When they have run out every further
// number is the smallest one, every chance no and every text empty.
class Decisions
{
public:
    explicit Decisions(std::span<const UInt8> input) : bytes_(input) {}

    bool HaveEnded() const { return bytes_.empty(); }
    bool Chance() { return (Byte() & 1) != 0; }
    UInt8 Byte();
    // 0 up to, not including, `end`, which is not 0. Takes as many bytes as that needs.
    UInt32 Below(UInt32 end);
    // `first` and `last` included.
    SInt32 Between(SInt32 first, SInt32 last);
    // Any 32 bits, among them often a small number or an extreme.
    SInt32 AnyLong();
    // Without zeros, `most` characters at most.
    std::string Text(size_t most);
    std::vector<UInt8> Bytes(size_t most);
    std::vector<UInt8> Rest();

private:
    std::span<const UInt8> bytes_;
};

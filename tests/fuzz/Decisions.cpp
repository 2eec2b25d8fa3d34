// SPDX-License-Identifier: MIT
#include "tests/fuzz/Decisions.h"

#include <algorithm>

UInt8 Decisions::Byte()
{
    if (bytes_.empty())
        return 0;
    const UInt8 byte = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return byte;
}

UInt32 Decisions::Below(UInt32 end)
{
    UInt64 value = 0;
    for (UInt64 reach = 1; reach < end; reach <<= 8)
        value = value << 8 | Byte();
    return static_cast<UInt32>(value % end);
}

SInt32 Decisions::Between(SInt32 first, SInt32 last)
{
    const auto count = static_cast<UInt64>(SInt64{last} - first) + 1;
    UInt64 value = 0;
    for (UInt64 reach = 1; reach < count; reach <<= 8)
        value = value << 8 | Byte();
    return static_cast<SInt32>(first + static_cast<SInt64>(value % count));
}

SInt32 Decisions::AnyLong()
{
    switch (Below(8)) {
    case 0:
        return INT32_MAX - Byte();
    case 1:
        return INT32_MIN + Byte();
    case 2:
        return Between(INT32_MIN, INT32_MAX);
    case 3:
        return -1 - Byte();
    case 4:
        return Between(0, 0xFFFF);
    default:
        return Byte();
    }
}

std::string Decisions::Text(size_t most)
{
    std::string text;
    for (const UInt8 byte : Bytes(most)) {
        if (byte == 0)
            break;
        text += static_cast<char>(byte);
    }
    return text;
}

std::vector<UInt8> Decisions::Bytes(size_t most)
{
    const size_t wanted = Below(static_cast<UInt32>(most) + 1);
    const auto taken = bytes_.first(std::min(wanted, bytes_.size()));
    bytes_ = bytes_.subspan(taken.size());
    return {taken.begin(), taken.end()};
}

std::vector<UInt8> Decisions::Rest()
{
    const std::vector<UInt8> rest(bytes_.begin(), bytes_.end());
    bytes_ = {};
    return rest;
}

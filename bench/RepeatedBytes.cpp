// SPDX-License-Identifier: MIT
#include "bench/RepeatedBytes.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{

constexpr size_t kZeros = 8 << 20;

}

void RepeatedBytes::Copy(UInt8* dest, SInt64 offset, SInt32 count) const
{
    size_t place = static_cast<size_t>(offset) % block_.size();
    size_t left = static_cast<size_t>(count);
    while (left > 0) {
        const size_t piece = std::min(left, block_.size() - place);
        std::memcpy(dest, block_.data() + place, piece);
        dest += piece;
        left -= piece;
        place = 0;
    }
}

RepeatedBytes LoadBytes(const std::string& name)
{
    if (name == "zeros") {
        return RepeatedBytes(std::vector<UInt8>(kZeros, 0));
    }
    std::ifstream file(name, std::ios::binary);
    std::vector<UInt8> block{std::istreambuf_iterator<char>(file), {}};
    if (block.empty()) {
        throw std::runtime_error(name + ": no bytes to be had");
    }
    return RepeatedBytes(std::move(block));
}

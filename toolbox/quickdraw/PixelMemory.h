// SPDX-License-Identifier: MIT
//
// The memory of one pixel map.
#pragma once

#include "toolbox/Types.h"

#include <utility>

namespace toolbox
{

// Large blocks are kept for the next pixel map when they are let go: giving them back to the
// system and touching fresh pages costs more than all drawing into them.
class PixelMemory
{
public:
    PixelMemory() = default;
    ~PixelMemory() { Release(); }
    PixelMemory(const PixelMemory&) = delete;
    PixelMemory& operator=(const PixelMemory&) = delete;

    // False without memory. The contents are undefined.
    bool Allocate(size_t size);
    UInt8* Bytes() const { return bytes_; }
    void Swap(PixelMemory& other)
    {
        std::swap(bytes_, other.bytes_);
        std::swap(capacity_, other.capacity_);
    }

private:
    void Release();

    UInt8* bytes_ = nullptr;
    size_t capacity_ = 0;
};

} // namespace toolbox

// SPDX-License-Identifier: MIT
//
// Pixel memory with a margin on both sides, so that a test sees every byte that is written.
#pragma once

#include "src/image/PixelWriting.h"

#include <vector>

namespace test
{

constexpr Rect kEverywhere = {-32768, -32768, 32767, 32767};

struct PixelMemory {
    static constexpr ptrdiff_t kMargin = 8192;

    explicit PixelMemory(int depth, int rowBytes = 8, UInt8 fill = 0, ptrdiff_t size = 0)
        : bytes(static_cast<size_t>(2 * kMargin + size), fill), state{static_cast<UInt8>(depth),
                                                                      1,
                                                                      static_cast<UInt16>(rowBytes),
                                                                      bytes.data() + kMargin,
                                                                      0,
                                                                      0,
                                                                      kEverywhere}
    {
    }
    PixelMemory(const PixelMemory&) = delete;
    PixelMemory& operator=(const PixelMemory&) = delete;

    // The byte at an offset from the first pixel.
    UInt8& At(ptrdiff_t offset) { return bytes[static_cast<size_t>(kMargin + offset)]; }
    std::vector<UInt8> First(ptrdiff_t count) { return {&At(0), &At(0) + count}; }
    bool IsAll(UInt8 fill) const { return bytes == std::vector<UInt8>(bytes.size(), fill); }

    std::vector<UInt8> bytes;
    PixelWriteState state;
};

using Bytes = std::vector<UInt8>;

} // namespace test

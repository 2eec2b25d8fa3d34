// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/Pictures.h"

#include <vector>

namespace test
{

using Bytes = std::vector<UInt8>;

// Undoes the platform's packing. Throws std::runtime_error for a packet that is cut short, or for
// the flag that readers disagree about.
Bytes Unpack(const Bytes& packed, size_t unit);

// Pixels that a picture draws.
struct PictureCopy {
    int depth = 0;
    int rowBytes = 0;
    int packType = 0;
    int version = 0;
    SInt16 mode = 0;
    Rect bounds{};
    Rect from{};
    Rect to{};
    std::vector<UInt32> pixels; // 0x00RRGGBB, row after row
    std::vector<SInt16> mask;   // a region as it stands in a picture; empty if there is none
};

// A picture, taken apart by the format's documentation.
struct PictureParts {
    UInt16 size = 0;
    Rect frame{};
    Rect sourceRect{}; // of the header record
    std::vector<std::vector<SInt16>> clips;
    std::vector<RGBColor> foregrounds;
    std::vector<RGBColor> backgrounds;
    std::vector<PictureCopy> copies;
};

Bytes BytesOf(PicHandle picture);
// Throws std::runtime_error for what is no such picture, or goes on after its end.
PictureParts ReadPicture(const Bytes& bytes);

} // namespace test

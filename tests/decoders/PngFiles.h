// SPDX-License-Identifier: MIT
//
// PNG files, written and read by libpng alone.
#pragma once

#include "tests/support/HostedImage.h"

#include <png.h>

#include <string>
#include <utility>
#include <vector>

namespace test
{

using Bytes = std::vector<UInt8>;

// What to make a file of; its pixels are a pattern without regularity.
struct PngSpec {
    UInt32 width = 37;
    UInt32 height = 29;
    int colorType = PNG_COLOR_TYPE_RGB;
    int bitDepth = 8;
    bool isInterlaced = false;
    bool hasTransparency = false; // a tRNS chunk
    // Keyword and text; a compressed one is international.
    std::vector<std::pair<std::string, std::string>> texts = {};
    int textKind = PNG_TEXT_COMPRESSION_NONE;
    // Bytes of filling in an ancillary chunk at the front, as encoders put profiles there.
    size_t filling = 0;
};

Bytes WritePng(const PngSpec& spec);
// The whole image over white paper, throws std::runtime_error if libpng gives it up or it is
// larger than 512 MiB.
Picture ReadPng(const Bytes& file);

// Where the chunk of that type begins, at the length field, for the `count`th time; throws if it
// does not.
size_t FindChunk(const Bytes& file, const std::string& type, int count = 1);
// Writes the check sum that the contents of the chunk ask for.
void FixCheckSum(Bytes& file, size_t chunk);

} // namespace test

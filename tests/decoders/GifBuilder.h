// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <string>
#include <vector>

namespace test
{

// 0xRRGGBB each; a file has a power of two of them, black where none is named.
using GifColorList = std::vector<UInt32>;

struct GifImage {
    UInt16 left = 0;
    UInt16 top = 0;
    UInt16 width = 0;
    UInt16 height = 0;
    std::string indices; // row by row from the top, fewer than there are pixels for a damaged file
    GifColorList colors = {}; // empty: the global ones
    bool isInterlaced = false;
};

struct GifControl {
    int disposal = 0;
    int delay = 0;
    int transparent = -1;
    bool userInput = false;
};

// Writes GIF files, record by record.
class GifBuilder
{
public:
    GifBuilder(UInt16 width, UInt16 height, const GifColorList& colors = {}, UInt8 background = 0);

    GifBuilder& Control(const GifControl& control);
    GifBuilder& Image(const GifImage& image);
    // In parts of at most `partSize` bytes.
    GifBuilder& Comment(const std::string& text, size_t partSize = 255);
    GifBuilder& Repeats(UInt16 count, const std::string& application = "NETSCAPE2.0");
    GifBuilder& Raw(const std::string& bytes);

    std::string WithoutTrailer() const { return bytes_; }
    std::string Bytes() const { return bytes_ + ';'; }

private:
    void AddWord(UInt16 value);
    void AddColors(const GifColorList& colors);
    void AddParts(const std::string& data, size_t partSize);

    std::string bytes_;
};

} // namespace test

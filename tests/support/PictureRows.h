// SPDX-License-Identifier: MIT
//
// Which rows of a picture are what.
#pragma once

#include "tests/support/HostedImage.h"

#include <algorithm>
#include <utility>

namespace test
{

using RowBand = std::pair<SInt32, SInt32>; // the first row, one past the last

// The band of rows that differ from the paper; from the height to 0 if none does.
inline RowBand DrawnRows(const Picture& picture, UInt32 paper)
{
    RowBand rows = {picture.height, 0};
    for (SInt32 row = 0; row < picture.height; ++row) {
        for (SInt32 column = 0; column < picture.width; ++column) {
            if (picture.At(row, column) != paper)
                rows = {std::min(rows.first, row), row + 1};
        }
    }
    return rows;
}

// How many of the first rows are the same in both.
inline SInt32 CommonRows(const Picture& a, const Picture& b)
{
    SInt32 row = 0;
    const auto rowOf = [&row](const Picture& picture) {
        return picture.pixels.begin() + ptrdiff_t{row} * picture.width;
    };
    while (row < a.height && std::equal(rowOf(a), rowOf(a) + a.width, rowOf(b)))
        ++row;
    return row;
}

// What a host is told of such a band.
inline std::string DecodedChunk(const RowBand& rows)
{
    return "decodedChunk " + std::to_string(rows.first) + ',' + std::to_string(rows.second);
}

} // namespace test

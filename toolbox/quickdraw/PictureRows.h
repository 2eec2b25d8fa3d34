// SPDX-License-Identifier: MIT
//
// A rectangle of a pixel map in the form in which a picture stores it, row by row.
#pragma once

#include "toolbox/quickdraw/Copying.h"
#include "toolbox/quickdraw/PictureBytes.h"

#include <array>

namespace toolbox
{

// How a record of a picture packs its rows; the values are the format's.
enum class RowPacking : SInt16 {
    Bytes = 0,      // of indexed pixels
    None = 1,       // of direct pixels
    Words = 3,      // 16 bits a pixel
    Components = 4, // 32 bits: all reds of a row, then all greens, then all blues
};

class PictureRows
{
public:
    // The most columns that a record can tell of.
    static int MostColumns(int depth) { return static_cast<int>(kMostRowBytes) * 8 / depth; }

    // `part` lies within the map's bounds, is not empty, and has not too many columns. The pixels
    // stay the caller's.
    PictureRows(const PixMap& map, const Rect& part);

    bool AreDirect() const { return depth_ > 8; }
    RowPacking Packing() const;
    // Bytes a row unpacked, which decide how it is stored; even.
    int RowBytes() const { return rowBytes_; }

    void AddTo(PictureBytes& bytes);

private:
    static constexpr size_t kMostRowBytes = 0x3FFE; // even, and the two high bits are flags
    using Row = std::array<UInt8, kMostRowBytes>;

    const UInt8* RowAddress(int row) const;
    void TakeRow(int row);
    void TakeComponents(const UInt8* pixels);
    void TakeBits(const UInt8* bytes);
    void AddPackedRow(PictureBytes& bytes);

    PixMap map_;
    Rect part_;
    int depth_;
    int width_;
    int rowBytes_;
    size_t taken_ = 0; // bytes in row_
    Row row_;
    std::array<UInt8, kMostRowBytes + kMostRowBytes / 128 + 1> packed_;
};

} // namespace toolbox

// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PictureRows.h"

#include "toolbox/quickdraw/PackBits.h"
#include "toolbox/quickdraw/PixelView.h"

#include <cstring>

namespace toolbox
{
namespace
{

constexpr int kBitsPerByte = 8;
constexpr int kBitsPerWord = 16;
constexpr int kLeastPackedRowBytes = 8;
constexpr int kMostRowBytesWithShortCount = 250;
constexpr size_t kPixelBytes = 4; // x, R, G, B

int EvenRowBytes(int width, int depth)
{
    return (width * depth + kBitsPerWord - 1) / kBitsPerWord * 2;
}

} // namespace

// The rows are taken before they are looked at.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
PictureRows::PictureRows(const PixMap& map, const Rect& part)
    : map_(map), part_(part), depth_(map.pixelSize), width_(part.right - part.left),
      rowBytes_(EvenRowBytes(width_, depth_))
{
}

RowPacking PictureRows::Packing() const
{
    if (!AreDirect()) {
        return RowPacking::Bytes;
    }
    if (rowBytes_ < kLeastPackedRowBytes) {
        return RowPacking::None;
    }
    return depth_ == 16 ? RowPacking::Words : RowPacking::Components;
}

void PictureRows::AddTo(PictureBytes& bytes)
{
    const int height = part_.bottom - part_.top;
    for (int row = 0; row < height && !bytes.RanOut(); ++row) {
        TakeRow(row);
        if (rowBytes_ < kLeastPackedRowBytes) {
            bytes.AddBytes(row_.data(), taken_);
        } else {
            AddPackedRow(bytes);
        }
    }
}

const UInt8* PictureRows::RowAddress(int row) const
{
    const ptrdiff_t fromTop = row + part_.top - map_.bounds.top;
    return reinterpret_cast<const UInt8*>(map_.baseAddr) + fromTop * RowBytesOf(map_);
}

void PictureRows::TakeRow(int row)
{
    const UInt8* const bytes = RowAddress(row);
    const ptrdiff_t fromLeft = part_.left - map_.bounds.left;
    switch (Packing()) {
    case RowPacking::Bytes:
        TakeBits(bytes);
        break;
    case RowPacking::Components:
        TakeComponents(bytes + fromLeft * static_cast<ptrdiff_t>(kPixelBytes));
        break;
    case RowPacking::None:
    case RowPacking::Words:
        taken_ = static_cast<size_t>(rowBytes_);
        std::memcpy(row_.data(), bytes + fromLeft * (depth_ / kBitsPerByte), taken_);
        break;
    }
}

void PictureRows::TakeComponents(const UInt8* pixels)
{
    const auto width = static_cast<size_t>(width_);
    for (size_t i = 0; i < width; ++i) {
        row_[i] = pixels[kPixelBytes * i + 1];
        row_[width + i] = pixels[kPixelBytes * i + 2];
        row_[2 * width + i] = pixels[kPixelBytes * i + 3];
    }
    taken_ = 3 * width;
}

// Moves the first pixel of the part to the highest bits, and clears what stands behind the last.
void PictureRows::TakeBits(const UInt8* bytes)
{
    const int firstBit = (part_.left - map_.bounds.left) * depth_;
    const int bits = width_ * depth_;
    const int shift = firstBit % kBitsPerByte;
    const UInt8* const first = bytes + firstBit / kBitsPerByte;
    const UInt8* const last = bytes + (firstBit + bits - 1) / kBitsPerByte;
    taken_ = static_cast<size_t>(rowBytes_);
    std::memset(row_.data(), 0, taken_);
    const int count = (bits + kBitsPerByte - 1) / kBitsPerByte;
    for (int i = 0; i < count; ++i) {
        const UInt8* const byte = first + i;
        const int next = byte < last ? byte[1] : 0;
        row_[static_cast<size_t>(i)] =
            static_cast<UInt8>((*byte << shift) | (next >> (kBitsPerByte - shift)));
    }
    if (const int used = bits % kBitsPerByte; used != 0) {
        row_[static_cast<size_t>(count - 1)] &= static_cast<UInt8>(0xFF00 >> used);
    }
}

void PictureRows::AddPackedRow(PictureBytes& bytes)
{
    const size_t size = Packing() == RowPacking::Words
                            ? PackWords(row_.data(), taken_, packed_.data())
                            : PackBytes(row_.data(), taken_, packed_.data());
    if (rowBytes_ > kMostRowBytesWithShortCount) {
        bytes.Add16(static_cast<UInt16>(size));
    } else {
        bytes.Add8(static_cast<UInt8>(size));
    }
    bytes.AddBytes(packed_.data(), size);
}

} // namespace toolbox

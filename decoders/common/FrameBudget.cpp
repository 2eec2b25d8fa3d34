// SPDX-License-Identifier: MIT
#include "decoders/common/FrameBudget.h"

#include "toolbox/Errors.h"

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr UInt64 kLargestCoordinate = 0x7FFF;
constexpr UInt64 kLargestRowBytes = 0xFFFF;

// Rows of pixel maps begin at multiples of four bytes, unless only that makes them too long.
UInt64 RowBytes(UInt64 width, UInt16 depth)
{
    const UInt64 aligned = (width * depth + 31) / 32 * 4;
    return aligned <= kLargestRowBytes ? aligned : (width * depth + 7) / 8;
}

UInt64 LimitFromEnvironment()
{
    const char* const text = std::getenv("VORN_IMAGE_BYTES");
    if (text == nullptr)
        return FrameBudget::kDefaultLimit;
    const char* const end = text + std::strlen(text);
    UInt64 limit = 0;
    const auto [stop, error] = std::from_chars(text, end, limit);
    return error == std::errc{} && stop == end ? limit : FrameBudget::kDefaultLimit;
}

} // namespace

FrameBudget::FrameBudget() : FrameBudget(LimitFromEnvironment()) {}

bool FrameBudget::FitsCoordinates(UInt64 width, UInt64 height, UInt16 depth)
{
    return width > 0 && width <= kLargestCoordinate && height > 0 && height <= kLargestCoordinate &&
           RowBytes(width, depth) <= kLargestRowBytes;
}

UInt64 FrameBudget::BytesOf(UInt64 width, UInt64 height, UInt16 depth, UInt16 maskDepth)
{
    return height * (RowBytes(width, depth) + RowBytes(width, maskDepth));
}

bool FrameBudget::Allows(UInt64 width, UInt64 height, UInt16 depth, UInt16 maskDepth) const
{
    return FitsCoordinates(width, height, depth) && FitsCoordinates(width, height, maskDepth) &&
           BytesOf(width, height, depth, maskDepth) <= Left();
}

void FrameBudget::Take(UInt64 width, UInt64 height, UInt16 depth, UInt16 maskDepth)
{
    if (!Allows(width, height, depth, maskDepth))
        throw OSErr{memFullErr};
    taken_ += BytesOf(width, height, depth, maskDepth);
}

void FrameBudget::TakeBytes(UInt64 bytes)
{
    if (bytes > Left())
        throw OSErr{memFullErr};
    taken_ += bytes;
}

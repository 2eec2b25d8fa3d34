// SPDX-License-Identifier: MIT
#include "decoders/common/ByteStream.h"

#include <cstring>

size_t ByteStream::Read(UInt8* dest, size_t count)
{
    size_t copied = 0;
    while (copied < count && !ranOut_) {
        const size_t part = std::min(count - copied, end_ - next_);
        std::memcpy(dest + copied, buffer_.data() + next_, part);
        next_ += part;
        copied += part;
        if (copied == count)
            break;
        ranOut_ = isLastBlock_;
        if (!isLastBlock_) {
            const ArrivingBlock block(object_, buffer_.data());
            next_ = 0;
            end_ = block.count;
            isLastBlock_ = block.isLast;
        }
    }
    return copied;
}

void ByteStream::ReadAll(UInt8* dest, size_t count)
{
    if (Read(dest, count) != count)
        throw OSErr{kDataNotAvailableErr};
}

UInt8 ByteStream::NextByte()
{
    UInt8 byte = 0;
    ReadAll(&byte, 1);
    return byte;
}

UInt16 ByteStream::NextWord()
{
    const UInt8 low = NextByte();
    return static_cast<UInt16>(low | NextByte() << 8);
}

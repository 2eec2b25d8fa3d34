// SPDX-License-Identifier: MIT
#include "decoders/common/ByteBacklog.h"

#include "decoders/common/ArrivingBlock.h"

std::span<const UInt8> ByteBacklog::ReadBlock(VornPlugin& object, size_t unused)
{
    const size_t before = std::min(unused, bytes_.size());
    bytes_.erase(bytes_.begin(), bytes_.end() - static_cast<ptrdiff_t>(before));
    bytes_.resize(before + ArrivingBlock::kSize);
    const ArrivingBlock block(object, bytes_.data() + before);
    const size_t count = std::min(block.count, end_ - read_);
    bytes_.resize(before + count);
    read_ += count;
    hasAll_ = block.isLast || read_ == end_;
    const size_t skipped = std::min(toSkip_, bytes_.size());
    toSkip_ -= skipped;
    return std::span(bytes_).subspan(skipped);
}

void ByteBacklog::StartOver(VornPlugin& object)
{
    const size_t end = used_;
    *this = {};
    end_ = end;
    SkipToOffset(&object, 0);
}

// SPDX-License-Identifier: MIT
#include "decoders/common/ByteBacklog.h"

#include "decoders/common/ArrivingBlock.h"

std::span<const UInt8> ByteBacklog::ReadBlock(VornPlugin& object, size_t unused)
{
    const size_t before = std::min(unused, bytes_.size());
    bytes_.erase(bytes_.begin(), bytes_.end() - static_cast<ptrdiff_t>(before));
    bytes_.resize(before + ArrivingBlock::kSize);
    const ArrivingBlock block(object, bytes_.data() + before);
    bytes_.resize(before + block.count);
    hasAll_ = block.isLast;
    const size_t skipped = std::min(toSkip_, bytes_.size());
    toSkip_ -= skipped;
    return std::span(bytes_).subspan(skipped);
}

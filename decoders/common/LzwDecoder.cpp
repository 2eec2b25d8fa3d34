// SPDX-License-Identifier: MIT
#include "decoders/common/LzwDecoder.h"

#include <algorithm>
#include <cstring>

void LzwDecoder::Start(int bits, size_t rowSize)
{
    strings_.resize(kMostCodes);
    indices_.resize(std::max(indices_.size(), rowSize + kRowsAhead + kRoom));
    for (UInt32 code = 0; code < 1U << bits; ++code) {
        const auto index = static_cast<UInt8>(code);
        strings_[code] = {{index}, 0, 1, index};
    }
    begin_ = end_ = 0;
    rowSize_ = rowSize;
    data_ = {};
    bits_ = 0;
    bitCount_ = 0;
    rootBits_ = bits;
    hasEnded_ = false;
    Clear();
}

void LzwDecoder::Clear()
{
    nextCode_ = (1U << rootBits_) + 2; // behind those to clear and to end
    codeBits_ = rootBits_ + 1;
    last_ = kNone;
}

const UInt8* LzwDecoder::NextRow()
{
    if (end_ - begin_ < rowSize_)
        Unpack();
    if (end_ - begin_ < rowSize_)
        return nullptr;
    begin_ += rowSize_;
    return indices_.data() + begin_ - rowSize_;
}

void LzwDecoder::Unpack()
{
    const UInt32 clear = 1U << rootBits_;
    std::memmove(indices_.data(), indices_.data() + begin_, end_ - begin_);
    UInt8* to = indices_.data() + (end_ - begin_);
    const UInt8* const enough = indices_.data() + indices_.size() - kRoom;
    while (to < enough && !hasEnded_ && Fetch(codeBits_)) {
        const UInt32 code = static_cast<UInt32>(bits_) & ((1U << codeBits_) - 1);
        bits_ >>= codeBits_;
        bitCount_ -= codeBits_;
        if (code == clear)
            Clear();
        else if (code == clear + 1 || !Learn(code))
            hasEnded_ = true;
        else
            to = Put(code, to);
    }
    begin_ = 0;
    end_ = static_cast<size_t>(to - indices_.data());
}

bool LzwDecoder::Fetch(int bits)
{
    if (bitCount_ >= bits)
        return true;
    size_t used = 0;
    for (; bitCount_ <= 56 && used < data_.size(); ++used, bitCount_ += 8)
        bits_ |= UInt64{data_[used]} << bitCount_;
    data_ = data_.subspan(used);
    return bitCount_ >= bits;
}

// The next code's string is that of the last code with the first index of this one, which may be
// the next code itself. A full table stays as it is until it is cleared.
bool LzwDecoder::Learn(UInt32 code)
{
    const bool learns = last_ != kNone && nextCode_ < kMostCodes;
    if (code > nextCode_ || (code == nextCode_ && !learns))
        return false;
    if (learns) {
        const String& last = strings_[last_];
        String& next = strings_[nextCode_];
        const size_t inTail = last.length % kPart;
        next = last;
        ++next.length;
        if (inTail == 0)
            next.before = static_cast<UInt16>(last_);
        next.tail[inTail] = strings_[code].first;
        ++nextCode_;
    }
    if (nextCode_ >= 1U << codeBits_ && codeBits_ < kMostBits)
        ++codeBits_; // also behind a first code, where indices have one bit
    last_ = code;
    return true;
}

// Parts are put down whole, from the last to the first: what is too much is overwritten later.
UInt8* LzwDecoder::Put(UInt32 code, UInt8* to) const
{
    const String* string = &strings_[code];
    UInt8* const end = to + string->length;
    for (UInt8* part = to + (string->length - 1U) / kPart * kPart;; part -= kPart) {
        std::memcpy(part, string->tail.data(), kPart);
        if (part == to)
            return end;
        string = &strings_[string->before];
    }
}

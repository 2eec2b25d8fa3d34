// SPDX-License-Identifier: MIT
//
// The contents of a handle while they grow: numbers in the platform's byte order.
#pragma once

#include "toolbox/Types.h"

namespace toolbox
{

// Once memory has run out, it stays so and nothing more is added.
class PictureBytes
{
public:
    // Starts with what is in the block. The handle stays its owner's.
    explicit PictureBytes(Handle handle);

    Handle TheHandle() const { return handle_; }
    bool RanOut() const { return ranOut_; }
    void RunOut() { ranOut_ = true; }

    void Add8(UInt8 value) { AddNumber(value, sizeof value); }
    void Add16(UInt16 value) { AddNumber(value, sizeof value); }
    void Add16(SInt16 value) { AddNumber(static_cast<UInt16>(value), sizeof value); }
    void Add32(UInt32 value) { AddNumber(value, sizeof value); }
    void AddRect(const Rect& rect);
    void AddBytes(const UInt8* bytes, size_t count);
    // A zero where the count is odd.
    void AlignToWord();

    // Makes the block as small as what it holds.
    void Trim();

private:
    void AddNumber(UInt32 value, size_t size);
    bool MakeRoom(size_t count);

    Handle handle_;
    size_t count_;
    size_t capacity_;
    bool ranOut_ = false;
};

} // namespace toolbox

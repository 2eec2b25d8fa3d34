// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PictureBytes.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace toolbox
{
namespace
{

constexpr size_t kSmallestGrowth = 1024;
constexpr size_t kMostBytes = INT32_MAX;

} // namespace

PictureBytes::PictureBytes(Handle handle)
    : handle_(handle), count_(static_cast<size_t>(GetHandleSize(handle))), capacity_(count_)
{
}

void PictureBytes::AddRect(const Rect& rect)
{
    Add16(rect.top);
    Add16(rect.left);
    Add16(rect.bottom);
    Add16(rect.right);
}

void PictureBytes::AddBytes(const UInt8* bytes, size_t count)
{
    if (MakeRoom(count)) {
        std::memcpy(*handle_ + count_, bytes, count);
        count_ += count;
    }
}

void PictureBytes::AlignToWord()
{
    if (count_ % 2 != 0) {
        Add8(0);
    }
}

void PictureBytes::Trim()
{
    SetHandleSize(handle_, static_cast<Size>(count_));
    ranOut_ = ranOut_ || MemError() != noErr;
    capacity_ = count_;
}

void PictureBytes::AddNumber(UInt32 value, size_t size)
{
    std::array<UInt8, sizeof value> bytes{};
    for (size_t i = size; i > 0; --i) {
        bytes[i - 1] = static_cast<UInt8>(value);
        value >>= 8;
    }
    AddBytes(bytes.data(), size);
}

// By half as much again, so that few records move what is there.
bool PictureBytes::MakeRoom(size_t count)
{
    if (ranOut_ || capacity_ - count_ >= count) {
        return !ranOut_;
    }
    const size_t wanted = std::max(count_ + count, capacity_ + capacity_ / 2 + kSmallestGrowth);
    const size_t capacity = std::min(wanted, kMostBytes);
    if (capacity - count_ < count) {
        RunOut();
        return false;
    }
    SetHandleSize(handle_, static_cast<Size>(capacity));
    if (MemError() != noErr) {
        RunOut();
        return false;
    }
    capacity_ = capacity;
    return true;
}

} // namespace toolbox

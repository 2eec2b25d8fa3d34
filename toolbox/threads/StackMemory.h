// SPDX-License-Identifier: MIT
//
// The memory of one cooperative stack: reserved whole, committed as it is touched, with
// inaccessible pages below it.
#pragma once

#include <cstddef>

namespace toolbox
{

class StackMemory
{
public:
    // How much below a stack is inaccessible: more than a page, so that a frame with a large array
    // in it, as codecs have them, does not reach past it.
    static constexpr size_t kGuardBytes = size_t{64} * 1024;

    // At least `minimumBytes`, and at least 256 KiB. Throws std::bad_alloc.
    explicit StackMemory(size_t minimumBytes);
    // Keeps a few stacks of the usual size for the next ones; unmaps the others.
    ~StackMemory();
    StackMemory(StackMemory&& other) noexcept;
    StackMemory(const StackMemory&) = delete;
    StackMemory& operator=(const StackMemory&) = delete;

    // The lowest usable byte, above the guard; null if this one was moved from.
    void* Bottom() const { return bottom_; }
    size_t Size() const { return size_; } // usable bytes, whole pages
    // The address is one that only a stack that has run over reaches.
    bool IsInGuard(const void* address) const;

private:
    void* bottom_;
    size_t size_;
};

} // namespace toolbox

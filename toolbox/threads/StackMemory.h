// SPDX-License-Identifier: MIT
//
// The memory of one cooperative stack: reserved whole, committed as it is touched, with an
// inaccessible page below it.
#pragma once

#include <cstddef>

namespace toolbox
{

class StackMemory
{
public:
    // At least `minimumBytes`, and at least 256 KiB. Throws std::bad_alloc.
    explicit StackMemory(size_t minimumBytes);
    // Keeps a few stacks of the usual size for the next ones; unmaps the others.
    ~StackMemory();
    StackMemory(StackMemory&& other) noexcept;
    StackMemory(const StackMemory&) = delete;
    StackMemory& operator=(const StackMemory&) = delete;

    // The lowest usable byte, above the guard page; null if this one was moved from.
    void* Bottom() const { return bottom_; }
    size_t Size() const { return size_; } // usable bytes, whole pages

private:
    void* bottom_;
    size_t size_;
};

} // namespace toolbox

// SPDX-License-Identifier: MIT
#include "toolbox/threads/StackMemory.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace toolbox
{
namespace
{

constexpr size_t kUsualSize = size_t{256} * 1024;
constexpr size_t kMostKept = 16;

size_t PageSize()
{
    static const auto size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

// Throws std::bad_alloc for what no address space holds, and so before a sum wraps around.
size_t WholePages(size_t bytes)
{
    if (bytes > PTRDIFF_MAX) {
        throw std::bad_alloc();
    }
    return (bytes + PageSize() - 1) / PageSize() * PageSize();
}

size_t GuardSize()
{
    return WholePages(StackMemory::kGuardBytes);
}

// Never destroyed: stacks may still be given back while the process ends.
std::vector<void*>& KeptStacks()
{
    static auto& kept = *new std::vector<void*>;
    return kept;
}

void* MapStack(size_t size)
{
    void* const guard = mmap(nullptr, GuardSize() + size, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (guard == MAP_FAILED) {
        throw std::bad_alloc();
    }
    if (mprotect(guard, GuardSize(), PROT_NONE) != 0) {
        munmap(guard, GuardSize() + size);
        throw std::bad_alloc();
    }
    return static_cast<char*>(guard) + GuardSize();
}

void UnmapStack(void* bottom, size_t size)
{
    munmap(static_cast<char*>(bottom) - GuardSize(), GuardSize() + size);
}

void* TakeStack(size_t size)
{
    auto& kept = KeptStacks();
    if (size != kUsualSize || kept.empty()) {
        kept.reserve(kMostKept); // so that giving one back cannot fail
        return MapStack(size);
    }
    void* const bottom = kept.back();
    kept.pop_back();
    return bottom;
}

} // namespace

StackMemory::StackMemory(size_t minimumBytes)
    : bottom_(nullptr), size_(WholePages(std::max(minimumBytes, kUsualSize)))
{
    bottom_ = TakeStack(size_);
}

StackMemory::StackMemory(StackMemory&& other) noexcept
    : bottom_(std::exchange(other.bottom_, nullptr)), size_(std::exchange(other.size_, 0))
{
}

StackMemory::~StackMemory()
{
    if (bottom_ == nullptr) {
        return;
    }
    if (size_ == kUsualSize && KeptStacks().size() < kMostKept) {
        KeptStacks().push_back(bottom_);
    } else {
        UnmapStack(bottom_, size_);
    }
}

bool StackMemory::IsInGuard(const void* address) const
{
    const auto bottom = reinterpret_cast<std::uintptr_t>(bottom_);
    const auto asked = reinterpret_cast<std::uintptr_t>(address);
    return asked < bottom && bottom - asked <= GuardSize();
}

} // namespace toolbox

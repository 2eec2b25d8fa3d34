// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PixelMemory.h"

#include <array>
#include <cstdlib>
#include <utility>

namespace toolbox
{
namespace
{

constexpr size_t kAlignment = 64;
constexpr size_t kLargeBlock = size_t{128} << 10; // the C library maps and unmaps from here on
constexpr size_t kMostPooledBytes = size_t{32} << 20;

struct Block {
    UInt8* bytes = nullptr;
    size_t capacity = 0;
};

class Pool
{
public:
    // The smallest block that is large enough without wasting more than half of itself.
    Block Take(size_t size)
    {
        Block* best = nullptr;
        for (Block& block : blocks_) {
            if (block.capacity >= size && block.capacity / 2 <= size &&
                (best == nullptr || block.capacity < best->capacity)) {
                best = &block;
            }
        }
        if (best == nullptr) {
            return {};
        }
        total_ -= best->capacity;
        return std::exchange(*best, Block{});
    }

    bool Keep(const Block& kept)
    {
        for (Block& block : blocks_) {
            if (block.bytes == nullptr && total_ + kept.capacity <= kMostPooledBytes) {
                total_ += kept.capacity;
                block = kept;
                return true;
            }
        }
        return false;
    }

private:
    std::array<Block, 8> blocks_;
    size_t total_ = 0;
};

// Never destroyed: worlds may still be made and disposed of while the process ends.
Pool& ThePool()
{
    static auto& pool = *new Pool;
    return pool;
}

} // namespace

bool PixelMemory::Allocate(size_t size)
{
    Release();
    const size_t rounded = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (rounded >= kLargeBlock) {
        const Block block = ThePool().Take(rounded);
        bytes_ = block.bytes;
        capacity_ = block.capacity;
    }
    if (bytes_ == nullptr) {
        bytes_ = static_cast<UInt8*>(std::aligned_alloc(kAlignment, rounded));
        capacity_ = rounded;
    }
    return bytes_ != nullptr;
}

void PixelMemory::Release()
{
    if (bytes_ != nullptr && (capacity_ < kLargeBlock || !ThePool().Keep({bytes_, capacity_}))) {
        std::free(bytes_);
    }
    bytes_ = nullptr;
}

} // namespace toolbox

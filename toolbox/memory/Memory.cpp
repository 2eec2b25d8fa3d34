// SPDX-License-Identifier: MIT
#include "toolbox/memory/Memory.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

using toolbox::Announce;
using toolbox::CountInLedger;

namespace
{

constexpr SInt8 kLockedState = static_cast<SInt8>(0x80);
constexpr int kStaleByte = 0xDB;

// A relocatable block. Its handle is the address of `master`, which must stay the first member.
struct Block {
    Ptr master = nullptr;
    Size size = 0;
    Size capacity = 0; // what stands at `master`; more than `size` after shrinking in place
    SInt8 state = 0;
    Block* previous = nullptr;
    Block* next = nullptr;
};

OSErr gMemError = noErr;
bool gScramble = false;
Block* gFirstBlock = nullptr;

Block* BlockOf(Handle handle)
{
    return reinterpret_cast<Block*>(handle);
}

size_t BytesFor(Size size)
{
    return static_cast<size_t>(std::max(size, Size{1}));
}

void Link(Block* block)
{
    block->next = gFirstBlock;
    if (gFirstBlock != nullptr) {
        gFirstBlock->previous = block;
    }
    gFirstBlock = block;
}

void Unlink(Block* block)
{
    (block->previous != nullptr ? block->previous->next : gFirstBlock) = block->next;
    if (block->next != nullptr) {
        block->next->previous = block->previous;
    }
}

// Frees the bytes after making them useless to whoever still points there.
void FreeStale(Ptr bytes, Size capacity)
{
    std::memset(bytes, kStaleByte, BytesFor(capacity));
    asm volatile("" : : "r"(bytes) : "memory"); // or the compiler drops a store before free
    std::free(bytes);
}

// Leaves the block where it is if there is no memory for a copy.
void MoveElsewhere(Block* block)
{
    auto* const place = static_cast<Ptr>(std::malloc(BytesFor(block->size)));
    if (place == nullptr) {
        return;
    }
    std::memcpy(place, block->master, static_cast<size_t>(block->size));
    FreeStale(block->master, block->capacity);
    block->master = place;
    block->capacity = block->size;
}

void MoveUnlockedBlocks()
{
    for (Block* block = gFirstBlock; block != nullptr; block = block->next) {
        if ((block->state & kLockedState) == 0) {
            MoveElsewhere(block);
        }
    }
}

Handle MakeHandle(const char* operation, Size size, bool clear)
{
    gMemError = Announce(operation);
    if (gMemError == noErr && size < 0) {
        gMemError = paramErr;
    }
    if (gMemError != noErr) {
        return nullptr;
    }
    std::unique_ptr<Block> block(new (std::nothrow) Block);
    void* const bytes = clear ? std::calloc(1, BytesFor(size)) : std::malloc(BytesFor(size));
    if (block == nullptr || bytes == nullptr) {
        std::free(bytes);
        gMemError = memFullErr;
        return nullptr;
    }
    block->master = static_cast<Ptr>(bytes);
    block->size = block->capacity = size;
    if (gScramble) {
        MoveUnlockedBlocks();
    }
    Link(block.get());
    CountInLedger(kLiveHandles, 1);
    return &block.release()->master;
}

OSErr ResizeBlock(Block* block, Size size)
{
    const bool locked = (block->state & kLockedState) != 0;
    if (locked && size > block->capacity) {
        return memFullErr;
    }
    if (!locked) {
        auto* const place = static_cast<Ptr>(std::realloc(block->master, BytesFor(size)));
        if (place == nullptr) {
            return memFullErr;
        }
        block->master = place;
        block->capacity = size;
    }
    block->size = size;
    return noErr;
}

// Announces an operation on a handle that cannot fail but for a null handle.
bool BeginOnHandle(const char* operation, Handle handle)
{
    Announce(operation);
    gMemError = handle == nullptr ? nilHandleErr : noErr;
    return handle != nullptr;
}

void LockBlock(const char* operation, Handle handle)
{
    if (BeginOnHandle(operation, handle)) {
        BlockOf(handle)->state |= kLockedState;
    }
}

} // namespace

Handle NewHandle(Size size)
{
    return MakeHandle("NewHandle", size, false);
}

Handle NewHandleClear(Size size)
{
    return MakeHandle("NewHandleClear", size, true);
}

void DisposeHandle(Handle handle)
{
    Announce("DisposeHandle");
    gMemError = noErr;
    if (handle == nullptr) {
        return;
    }
    Block* const block = BlockOf(handle);
    Unlink(block);
    std::free(block->master);
    delete block;
    CountInLedger(kLiveHandles, -1);
}

Size GetHandleSize(Handle handle)
{
    gMemError = Announce("GetHandleSize");
    if (gMemError == noErr && handle == nullptr) {
        gMemError = nilHandleErr;
    }
    return gMemError == noErr ? BlockOf(handle)->size : 0;
}

void SetHandleSize(Handle handle, Size size)
{
    gMemError = Announce("SetHandleSize");
    if (gMemError != noErr) {
        return;
    }
    if (handle == nullptr || size < 0) {
        gMemError = handle == nullptr ? nilHandleErr : paramErr;
        return;
    }
    if (gScramble) {
        MoveUnlockedBlocks();
    }
    gMemError = ResizeBlock(BlockOf(handle), size);
}

OSErr MemError(void)
{
    Announce("MemError");
    return gMemError;
}

SInt8 HGetState(Handle handle)
{
    return BeginOnHandle("HGetState", handle) ? BlockOf(handle)->state : SInt8{0};
}

void HSetState(Handle handle, SInt8 state)
{
    if (BeginOnHandle("HSetState", handle)) {
        BlockOf(handle)->state = state;
    }
}

void HLock(Handle handle)
{
    LockBlock("HLock", handle);
}

void HLockHi(Handle handle)
{
    LockBlock("HLockHi", handle);
}

Ptr NewPtr(Size size)
{
    gMemError = Announce("NewPtr");
    if (gMemError == noErr && size < 0) {
        gMemError = paramErr;
    }
    if (gMemError != noErr) {
        return nullptr;
    }
    auto* const bytes = static_cast<Ptr>(std::malloc(BytesFor(size)));
    if (bytes == nullptr) {
        gMemError = memFullErr;
        return nullptr;
    }
    CountInLedger(kLivePointers, 1);
    return bytes;
}

void DisposePtr(Ptr block)
{
    Announce("DisposePtr");
    gMemError = noErr;
    if (block != nullptr) {
        std::free(block);
        CountInLedger(kLivePointers, -1);
    }
}

void BlockMoveData(const void* source, void* destination, Size count)
{
    Announce("BlockMoveData");
    gMemError = count < 0 ? paramErr : noErr;
    if (count > 0) {
        std::memmove(destination, source, static_cast<size_t>(count));
    }
}

void SetHandleScramble(Boolean on)
{
    gScramble = on != 0;
}

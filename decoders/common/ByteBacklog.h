// SPDX-License-Identifier: MIT
#pragma once

#include "src/plugin/VornPluginABI.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The bytes of an object's data that have arrived and are still to be used, in one piece: for a
// library that uses what it can of them, and wants the rest again together with what follows.
class ByteBacklog
{
public:
    // Adds the object's next block to the last `unused` bytes, and drops those before. Waits for
    // it; throws what the host fails with.
    std::span<const UInt8> ReadBlock(VornPlugin& object, size_t unused);
    // Leaves out so many bytes of the blocks to come.
    void SkipAhead(size_t count) { toSkip_ += count; }
    // Whether nothing will follow.
    bool HasAll() const { return hasAll_; }
    // Notes that all that was read has been used but for the last `unused` bytes.
    void NoteUse(size_t unused) { used_ = read_ - unused; }
    // Begins with the object's first byte again, as if it ended with the last that was noted.
    void StartOver(VornPlugin& object);

private:
    std::vector<UInt8> bytes_;
    size_t toSkip_ = 0;
    size_t read_ = 0; // of the object
    size_t used_ = 0;
    size_t end_ = SIZE_MAX;
    bool hasAll_ = false;
};

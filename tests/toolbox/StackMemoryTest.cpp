// SPDX-License-Identifier: MIT
#include "toolbox/threads/StackMemory.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <unistd.h>
#include <utility>

namespace
{

using toolbox::StackMemory;

// Asks the system to read there, which answers instead of raising a signal.
bool IsReadable(const char* byte)
{
    int ends[2];
    if (pipe(ends) != 0) {
        return false;
    }
    const bool readable = write(ends[1], byte, 1) == 1;
    close(ends[0]);
    close(ends[1]);
    return readable;
}

TEST(StackMemory, IsInaccessibleFor64KibibytesBelow)
{
    for (const size_t size : {size_t{1}, size_t{1} << 20}) {
        const StackMemory stack(size);
        const auto* const bottom = static_cast<const char*>(stack.Bottom());
        EXPECT_TRUE(IsReadable(bottom));
        EXPECT_FALSE(IsReadable(bottom - 1));
        EXPECT_FALSE(IsReadable(bottom - StackMemory::kGuardBytes));
    }
}

TEST(StackMemory, KnowsItsGuard)
{
    const StackMemory stack(0);
    const auto* const bottom = static_cast<const char*>(stack.Bottom());
    EXPECT_FALSE(stack.IsInGuard(bottom));
    EXPECT_TRUE(stack.IsInGuard(bottom - 1));
    EXPECT_TRUE(stack.IsInGuard(bottom - StackMemory::kGuardBytes));
    EXPECT_FALSE(stack.IsInGuard(bottom - StackMemory::kGuardBytes - 1));
    EXPECT_FALSE(stack.IsInGuard(nullptr));
}

TEST(StackMemory, IsAtLeast256KibibytesAndAtLeastWhatWasAskedFor)
{
    EXPECT_EQ(size_t{256} * 1024, StackMemory(65536).Size());
    EXPECT_GE(StackMemory(300000).Size(), size_t{300000});
}

TEST(StackMemory, GivesTheSameMemoryAgain)
{
    void* first = nullptr;
    {
        const StackMemory stack(0);
        first = stack.Bottom();
    }
    const StackMemory again(0);
    EXPECT_EQ(first, again.Bottom());
}

TEST(StackMemory, HasOneOwner)
{
    StackMemory stack(0);
    void* const bottom = stack.Bottom();
    const StackMemory moved(std::move(stack));
    EXPECT_EQ(bottom, moved.Bottom());
    const StackMemory other(0);
    EXPECT_NE(bottom, other.Bottom());
}

TEST(StackMemory, ThatIsNotToBeHadThrows)
{
    EXPECT_THROW(StackMemory(std::numeric_limits<size_t>::max() / 4 * 3), std::bad_alloc);
}

TEST(StackMemory, ThatWouldBeNothingWhenRoundedUpThrows)
{
    constexpr size_t kMost = std::numeric_limits<size_t>::max();
    EXPECT_THROW(StackMemory{kMost}, std::bad_alloc);
    EXPECT_THROW(StackMemory(kMost - StackMemory::kGuardBytes), std::bad_alloc);
}

} // namespace

// SPDX-License-Identifier: MIT
//
// Adding a frame when there is no memory for its record.
#include "tests/support/ScriptedImageTest.h"

#include <cstdlib>
#include <new>

// The address sanitizer has its own operators, which must not be mixed with others.
#ifndef __SANITIZE_ADDRESS__

namespace
{

bool gMemoryIsShort = false;

} // namespace

// All of this program's; fails only while a test says so.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return gMemoryIsShort ? nullptr : std::malloc(size != 0 ? size : 1);
}

namespace
{

class FrameMemory : public test::ScriptedImageTest
{
protected:
    OSErr AddWithoutMemory()
    {
        gMemoryIsShort = true;
        const OSErr err = image->AddNewFrame(kImageRect, 8, nullptr, 1, index);
        gMemoryIsShort = false;
        return err;
    }

    SInt16 index = -7;
};

} // namespace

TEST_F(FrameMemory, IsReportedMissingByAddingAFrame)
{
    EXPECT_EQ(AddWithoutMemory(), memFullErr);
}

TEST_F(FrameMemory, MissingLeavesTheListAndTheCountersAlone)
{
    AddWithoutMemory();
    EXPECT_EQ(image->frameCount, 0);
    EXPECT_EQ(image->frames.count, 0);
    EXPECT_EQ(image->curFrame, -1);
    EXPECT_EQ(index, -7);
}

#endif

// SPDX-License-Identifier: MIT
#include "viewer/PageChanges.h"

#include <gtest/gtest.h>

namespace
{

using viewer::PageChanges;

TEST(PageChanges, AreTakenOnce)
{
    PageChanges changes;
    changes.Add({0, 0, 10, 10});
    EXPECT_EQ(changes.Take().size(), 1u);
    EXPECT_TRUE(changes.Take().empty());
}

TEST(PageChanges, LeaveOutWhatIsEmptyOrHeldAlready)
{
    PageChanges changes;
    changes.Add({0, 0, 10, 10});
    changes.Add({0, 0, 10, 10});
    changes.Add({2, 2, 8, 10});
    changes.Add({5, 20, 5, 30});
    EXPECT_EQ(changes.Take().size(), 1u);
}

TEST(PageChanges, BecomeOneRectangleWhenThereAreMany)
{
    PageChanges changes;
    for (SInt16 i = 0; i < 65; ++i) {
        changes.Add({static_cast<SInt16>(i * 10), i, static_cast<SInt16>(i * 10 + 5), 100});
    }
    const std::vector<Rect> rects = changes.Take();
    ASSERT_EQ(rects.size(), 1u);
    EXPECT_EQ(rects[0].top, 0);
    EXPECT_EQ(rects[0].left, 0);
    EXPECT_EQ(rects[0].bottom, 645);
    EXPECT_EQ(rects[0].right, 100);
}

} // namespace

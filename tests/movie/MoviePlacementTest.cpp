// SPDX-License-Identifier: MIT
#include "tests/movie/PlaybackTest.h"

namespace test
{
namespace
{

bool operator==(const Rect& a, const Rect& b)
{
    return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}

class MoviePlacement : public PlaybackTest
{
protected:
    Rect DisplayRect(const Rect& natural, UInt32 flags, const Rect& bounds)
    {
        auto plugin = MakePlugin();
        plugin->SetDisplayRect(natural);
        plugin->SetDisplayFlags(flags);
        Rect result{};
        plugin->GetDisplayRect(bounds, result);
        return result;
    }
};

TEST_F(MoviePlacement, WithoutFlagsStandsAtTheTopLeft)
{
    EXPECT_TRUE(DisplayRect({0, 0, 101, 200}, 0, {10, 20, 500, 600}) == (Rect{10, 20, 111, 220}));
    EXPECT_TRUE(DisplayRect({3, 4, 104, 204}, 0, {10, 20, 50, 60}) == (Rect{10, 20, 111, 220}));
}

TEST_F(MoviePlacement, FillsTheAreaWhenScaledWithoutAspect)
{
    EXPECT_TRUE(DisplayRect({0, 0, 101, 200}, 0x01, {10, 20, 500, 600}) ==
                (Rect{10, 20, 500, 600}));
}

TEST_F(MoviePlacement, FitsIntoTheAreaWithAspect)
{
    EXPECT_TRUE(DisplayRect({0, 0, 100, 200}, 0x05, {10, 20, 110, 120}) == (Rect{10, 20, 60, 120}));
    EXPECT_TRUE(DisplayRect({0, 0, 50, 50}, 0x05, {0, 0, 100, 100}) == (Rect{0, 0, 100, 100}));
}

TEST_F(MoviePlacement, NeverGrowsWhenShrinkOnly)
{
    EXPECT_TRUE(DisplayRect({0, 0, 50, 50}, 0x07, {0, 0, 100, 100}) == (Rect{0, 0, 50, 50}));
    EXPECT_TRUE(DisplayRect({0, 0, 100, 200}, 0x07, {0, 0, 100, 100}) == (Rect{0, 0, 50, 100}));
}

TEST_F(MoviePlacement, CentresWithTheOddPixelAtLeftAndTop)
{
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x18, {0, 0, 11, 11}) == (Rect{4, 4, 8, 8}));
    EXPECT_TRUE(DisplayRect({0, 0, 14, 14}, 0x18, {0, 0, 11, 11}) == (Rect{-2, -2, 12, 12}));
}

TEST_F(MoviePlacement, AlignsRightAndBottomUnlessCentred)
{
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x60, {0, 0, 11, 11}) == (Rect{7, 7, 11, 11}));
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x78, {0, 0, 11, 11}) == (Rect{4, 4, 8, 8}));
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x20, {0, 0, 11, 11}) == (Rect{0, 7, 4, 11}));
    EXPECT_TRUE(DisplayRect({0, 0, 4, 4}, 0x40, {0, 0, 11, 11}) == (Rect{7, 0, 11, 4}));
}

TEST_F(MoviePlacement, GoesByTheFlagsThatTheKindOfMovieItIsTells)
{
    struct Aligned : VornMoviePlugin {
        using VornMoviePlugin::VornMoviePlugin;
        UInt32 GetDisplayFlags() override { return 0x60; }
    } plugin(bundle.Get());
    plugin.SetDisplayRect({0, 0, 4, 4});
    Rect result{};
    plugin.GetDisplayRect({0, 0, 11, 11}, result);
    EXPECT_TRUE(result == (Rect{7, 7, 11, 11}));
}

// Data and drags ------------------------------------------------------------------------------

TEST_F(MoviePlacement, HandsOutNoData)
{
    auto plugin = MakePlugin();
    UInt32 type = 77;
    char block = 0;
    Ptr master = &block;
    Handle handle = &master;
    plugin->GetData(type, &handle);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(type, 77u);
}

TEST_F(MoviePlacement, HandsOutNoDataToNowhere)
{
    auto plugin = MakePlugin();
    UInt32 type = 77;
    plugin->GetData(type, nullptr);
    EXPECT_EQ(type, 77u);
}

TEST_F(MoviePlacement, RefusesDrags)
{
    auto plugin = MakePlugin();
    unsigned char allowed = 1;
    plugin->PrepareDrag(nullptr, 0, area, allowed);
    EXPECT_EQ(allowed, 0);
    plugin->CleanupDrag();
}

} // namespace
} // namespace test

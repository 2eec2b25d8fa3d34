// SPDX-License-Identifier: MIT
#include "src/plugin/VornPlugin.h"

#include <gtest/gtest.h>

#include <ostream>
#include <random>

bool operator==(const Rect& a, const Rect& b)
{
    return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}

std::ostream& operator<<(std::ostream& out, const Rect& rect)
{
    return out << '(' << rect.top << ", " << rect.left << ", " << rect.bottom << ", " << rect.right
               << ')';
}

namespace
{

Rect Sized(int width, int height)
{
    return {0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)};
}

Rect Placed(UInt32 flags, const Rect& natural, const Rect& bounds)
{
    Rect out{};
    VornPlugin::ScaleRectWithFlags(flags, natural, bounds, out);
    return out;
}

Rect Fitted(const Rect& bounds, Rect rect, bool shrinkOnly)
{
    VornPlugin::ScaleRectToFit(bounds, rect, shrinkOnly);
    return rect;
}

Rect Centered(const Rect& bounds, Rect rect)
{
    VornPlugin::CenterRect(bounds, rect);
    return rect;
}

int Width(const Rect& rect)
{
    return rect.right - rect.left;
}

int Height(const Rect& rect)
{
    return rect.bottom - rect.top;
}

} // namespace

TEST(DisplayFlags, NoneMoveTheRectangleToTheTopLeft)
{
    EXPECT_EQ(Placed(0, {7, 8, 17, 28}, {100, 200, 400, 500}), (Rect{100, 200, 110, 220}));
}

TEST(DisplayFlags, ScaleAloneStretchesToTheBounds)
{
    EXPECT_EQ(Placed(0x01, Sized(30, 50), {10, 20, 110, 220}), (Rect{10, 20, 110, 220}));
}

TEST(DisplayFlags, ScaleKeepingTheProportionsFitsInside)
{
    EXPECT_EQ(Placed(0x05, Sized(200, 100), Sized(100, 100)), Sized(100, 50));
    EXPECT_EQ(Placed(0x05, Sized(100, 200), Sized(100, 100)), Sized(50, 100));
}

TEST(DisplayFlags, ShrinkOnlyDoesNotEnlarge)
{
    EXPECT_EQ(Placed(0x07, Sized(50, 50), Sized(100, 100)), Sized(50, 50));
    EXPECT_EQ(Placed(0x05, Sized(50, 50), Sized(100, 100)), Sized(100, 100));
    EXPECT_EQ(Placed(0x07, Sized(200, 100), Sized(100, 100)), Sized(100, 50));
}

TEST(DisplayFlags, ShrinkOnlyAndKeepAspectMeanNothingWithoutScale)
{
    EXPECT_EQ(Placed(0x06, Sized(200, 100), Sized(100, 100)), Sized(200, 100));
    EXPECT_EQ(Placed(0x03, Sized(50, 50), Sized(100, 100)), Sized(100, 100));
}

TEST(DisplayFlags, CenterBothWays)
{
    EXPECT_EQ(Placed(0x1D, Sized(200, 100), Sized(100, 100)), (Rect{25, 0, 75, 100}));
}

TEST(DisplayFlags, AlignRightAndBottom)
{
    EXPECT_EQ(Placed(0x60, Sized(20, 10), {0, 0, 100, 200}), (Rect{90, 180, 100, 200}));
}

TEST(DisplayFlags, CenteringWinsOverAligning)
{
    EXPECT_EQ(Placed(0x28, Sized(20, 10), Sized(100, 100)), (Rect{0, 40, 10, 60}));
    EXPECT_EQ(Placed(0x50, Sized(20, 10), Sized(100, 100)), (Rect{45, 0, 55, 20}));
}

TEST(DisplayFlags, OthersAreIgnored)
{
    EXPECT_EQ(Placed(0xFFFFFF80, Sized(20, 10), {5, 5, 100, 100}), (Rect{5, 5, 15, 25}));
}

TEST(DisplayFlags, TheOutputMayBeTheNaturalRectangle)
{
    Rect rect = Sized(200, 100);
    VornPlugin::ScaleRectWithFlags(0x1D, rect, Sized(100, 100), rect);
    EXPECT_EQ(rect, (Rect{25, 0, 75, 100}));
}

TEST(Centering, GivesAnOddPixelToTheLeftAndTop)
{
    EXPECT_EQ(Placed(0x18, Sized(4, 4), Sized(11, 11)), (Rect{4, 4, 8, 8}));
    EXPECT_EQ(Centered(Sized(11, 11), Sized(4, 4)), (Rect{4, 4, 8, 8}));
}

TEST(Centering, ALargerPictureOverhangsOneMoreOnTheLeftAndTop)
{
    EXPECT_EQ(Centered(Sized(4, 4), Sized(11, 11)), (Rect{-4, -4, 7, 7}));
}

TEST(Fitting, DropsAFraction)
{
    EXPECT_EQ(Fitted(Sized(50, 100), Sized(100, 101), false), Sized(50, 50));
}

TEST(Fitting, KeepsTheTopLeftCorner)
{
    EXPECT_EQ(Fitted({500, 600, 510, 620}, {7, 8, 27, 28}, false), (Rect{7, 8, 17, 18}));
}

TEST(Fitting, CalculatesInSinglePrecision)
{
    // 31 / 7 * 7 is 31 in double precision and just below it in single precision.
    ASSERT_EQ(static_cast<int>(31.0 / 7.0 * 7.0), 31);
    EXPECT_EQ(Fitted(Sized(31, 31), Sized(7, 7), false), Sized(30, 30));
}

TEST(Fitting, RoundsTheProductToSinglePrecisionToo)
{
    // 5 / 3 is a little less in single precision; its product with 3 is below 5 unless it is
    // rounded again.
    ASSERT_EQ(static_cast<int>(double{5.0F / 3.0F} * 3.0), 4);
    EXPECT_EQ(Fitted(Sized(5, 5), Sized(3, 3), false), Sized(5, 5));
    EXPECT_EQ(Placed(0x05, Sized(3, 3), Sized(5, 5)), Sized(5, 5));
}

TEST(Fitting, LeavesARectangleWithoutWidthOrHeightAlone)
{
    EXPECT_EQ(Fitted(Sized(100, 100), Sized(0, 50), false), Sized(0, 50));
    EXPECT_EQ(Fitted(Sized(100, 100), Sized(50, 0), false), Sized(50, 0));
    EXPECT_EQ(Placed(0x1D, Sized(0, 0), Sized(100, 100)), (Rect{50, 50, 50, 50}));
}

TEST(Fitting, ShrinkOnlyKeepsASizeThatFitsExactly)
{
    EXPECT_EQ(Fitted(Sized(100, 70), Sized(100, 50), true), Sized(100, 50));
}

TEST(Fitting, TurnsARectangleInsideOutForBoundsThatAre)
{
    EXPECT_EQ(Fitted({0, 0, 20, -20}, Sized(10, 10), false), Sized(-20, -20));
    EXPECT_EQ(Fitted({0, 0, -20, -10}, Sized(-10, -10), false), Sized(-10, -10));
}

TEST(Fitting, SurvivesRectanglesThatAreInsideOut)
{
    // The scale is -65535. The height becomes -65535 * 30000, rounded to a multiple of 128, of
    // which a coordinate has the lower 16 bits; so has the width of 65535.
    constexpr auto kBottom = static_cast<SInt16>(-1966050048);
    EXPECT_EQ(Fitted({-32768, -32768, 32767, 32767}, {0, 0, 30000, -1}, false),
              (Rect{0, 0, kBottom, -1}));
    // The scale is -1: the far ends come to 32767 + 65535, in 16 bits 32766, and the rectangle
    // goes to the middle with a length of -1.
    EXPECT_EQ(Placed(0x1D, {32767, 32767, -32768, -32768}, {-32768, -32768, 32767, 32767}),
              (Rect{0, 0, -1, -1}));
}

TEST(Fitting, TakesSidesLongerThanACoordinateCanBe)
{
    EXPECT_EQ(Fitted(Sized(30000, 30000), {-30000, -30000, 30000, 30000}, false),
              (Rect{-30000, -30000, 0, 0}));
    EXPECT_EQ(Fitted({-30000, -30000, 30000, 30000}, Sized(20000, 10000), true),
              Sized(20000, 10000));
}

TEST(Centering, TakesSidesLongerThanACoordinateCanBe)
{
    EXPECT_EQ(Centered({-32768, -32768, 32767, 32767}, Sized(20, 10)), (Rect{-5, -10, 5, 10}));
}

TEST(DisplayFlags, MoveOverMoreThanACoordinateCanHold)
{
    const Rect natural = {30000, 30000, 30010, 30020};
    const Rect bounds = {-30000, -30000, -29900, -29900};
    EXPECT_EQ(Placed(0, natural, bounds), (Rect{-30000, -30000, -29990, -29980}));
    EXPECT_EQ(Placed(0x60, natural, bounds), (Rect{-29910, -29920, -29900, -29900}));
    EXPECT_EQ(Placed(0x18, natural, bounds), (Rect{-29955, -29960, -29945, -29940}));
}

namespace
{

class RandomRectangles
{
public:
    explicit RandomRectangles(unsigned seed) : random(seed) {}
    Rect Next()
    {
        const int left = Between(-2000, 2000);
        const int top = Between(-2000, 2000);
        return {static_cast<SInt16>(top), static_cast<SInt16>(left),
                static_cast<SInt16>(top + Between(1, 3000)),
                static_cast<SInt16>(left + Between(1, 3000))};
    }
    int Between(int low, int high) { return std::uniform_int_distribution(low, high)(random); }

private:
    std::mt19937 random;
};

void ExpectPlacedAcross(UInt32 flags, const Rect& bounds, const Rect& out)
{
    const int leftMargin = out.left - bounds.left;
    const int rightMargin = bounds.right - out.right;
    if (flags & kVornDisplayCenterH)
        EXPECT_TRUE(leftMargin - rightMargin == 0 ||
                    leftMargin - rightMargin == (Width(bounds) > Width(out) ? 1 : -1));
    else if (flags & kVornDisplayAlignRight)
        EXPECT_EQ(rightMargin, 0);
    else
        EXPECT_EQ(leftMargin, 0);
}

void ExpectPlacedDown(UInt32 flags, const Rect& bounds, const Rect& out)
{
    const int topMargin = out.top - bounds.top;
    const int bottomMargin = bounds.bottom - out.bottom;
    if (flags & kVornDisplayCenterV)
        EXPECT_TRUE(topMargin - bottomMargin == 0 ||
                    topMargin - bottomMargin == (Height(bounds) > Height(out) ? 1 : -1));
    else if (flags & kVornDisplayAlignBottom)
        EXPECT_EQ(bottomMargin, 0);
    else
        EXPECT_EQ(topMargin, 0);
}

void ExpectSized(UInt32 flags, const Rect& natural, const Rect& bounds, const Rect& out)
{
    if (!(flags & kVornDisplayScale)) {
        EXPECT_EQ(Width(out), Width(natural));
        EXPECT_EQ(Height(out), Height(natural));
    } else if (!(flags & kVornDisplayKeepAspect)) {
        EXPECT_EQ(out, bounds);
    } else {
        EXPECT_LE(Width(out), Width(bounds));
        EXPECT_LE(Height(out), Height(bounds));
        const bool grows = Width(out) > Width(natural) || Height(out) > Height(natural);
        EXPECT_FALSE((flags & kVornDisplayShrinkOnly) && grows);
        // In proportion, but for the pixel that truncation may cost on each side.
        EXPECT_NEAR(1.0 * Width(out) * Height(natural), 1.0 * Height(out) * Width(natural),
                    1.5 * std::max(Width(natural), Height(natural)));
    }
}

} // namespace

TEST(DisplayFlags, HoldTheirMeaningForAnyRectangles)
{
    RandomRectangles rectangles(1);
    for (int round = 0; round < 20000; ++round) {
        const Rect natural = rectangles.Next();
        const Rect bounds = rectangles.Next();
        const auto flags = static_cast<UInt32>(rectangles.Between(0, 0x7F));
        const Rect out = Placed(flags, natural, bounds);
        SCOPED_TRACE(testing::Message() << flags << ' ' << natural << ' ' << bounds << ' ' << out);
        ExpectSized(flags, natural, bounds, out);
        ExpectPlacedAcross(flags, bounds, out);
        ExpectPlacedDown(flags, bounds, out);
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(Centering, IsTheCenteredCaseOfTheFlags)
{
    RandomRectangles rectangles(2);
    for (int round = 0; round < 2000; ++round) {
        const Rect natural = rectangles.Next();
        const Rect bounds = rectangles.Next();
        ASSERT_EQ(Centered(bounds, natural), Placed(0x18, natural, bounds));
    }
}

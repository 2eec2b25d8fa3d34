// SPDX-License-Identifier: MIT
//
// Where captions are written.
#include "viewer/window/Captions.h"

#include "tests/viewer/PageFixture.h"

#include <algorithm>

namespace
{

using viewer::EmbeddedObject;

constexpr int kTextHeight = 11;
constexpr int kSecondLine = 24; // where the lines below the name begin, below the object
constexpr int kThirdLine = 39;
constexpr int kEnd = 52;

class CaptionsTest : public PageFixture
{
protected:
    CaptionsTest() { page.SetStyle(viewer::StyleWithText(), viewer::Page::Height::kGrows); }
    void SetUp() override
    {
        if (!text.HasFont()) {
            GTEST_SKIP() << "there is no font";
        }
    }

    void Show(int pageWidth)
    {
        viewer::Page::Shape shape = page.CurrentShape();
        shape.width = static_cast<SInt16>(pageWidth);
        page.Reshape(shape);
        page.DrawChanges();
        captions.Update(nullptr);
    }
    // It has a picture, and an error.
    EmbeddedObject& AddDamaged()
    {
        EmbeddedObject& object = AddStarted("baddecode");
        RunToEnd();
        for (int i = 0; i < 3; ++i) {
            page.ObserveObjects();
        }
        return object;
    }
    bool IsRed(int v, int h) const
    {
        SInt32 rowBytes = 0;
        const UInt8* pixel = GetPortPixels(page.Port(), &rowBytes) + v * rowBytes + h * 4;
        return pixel[1] > pixel[2] + 40;
    }
    // From its first to its last red pixel between two rows below an object.
    struct Extent {
        int left = INT16_MAX;
        int right = 0;
        int Width() const { return right - left; }
    };
    Extent RedBelow(const EmbeddedObject& object, int first, int end) const
    {
        Extent extent;
        for (int v = object.Area().bottom + first; v < object.Area().bottom + end; ++v) {
            for (int h = 0; h < page.Width(); ++h) {
                if (IsRed(v, h)) {
                    extent.left = std::min(extent.left, h);
                    extent.right = std::max(extent.right, h + 1);
                }
            }
        }
        return extent;
    }

    viewer::TextPainter text;
    viewer::Captions captions{page};
};

TEST_F(CaptionsTest, AnErrorIsWrittenInOneLineWhereThePageHasRoomForIt)
{
    const EmbeddedObject& object = AddDamaged();
    Show(900);
    const Extent line = RedBelow(object, kSecondLine, kThirdLine);
    EXPECT_GT(line.Width(), page.Style().leastWidth);
    EXPECT_GE(line.Width(), text.WidthOf(object.Problem(), kTextHeight) - 4);
    EXPECT_LE(RedBelow(object, kThirdLine, kEnd).Width(), 0);
}

TEST_F(CaptionsTest, AnErrorThatIsTooLongForALineGoesOnInTheNext)
{
    viewer::PageStyle style = viewer::StyleWithText();
    style.leastWidth = 100;
    page.SetStyle(style, viewer::Page::Height::kGrows);
    const EmbeddedObject& object = AddDamaged();
    const int width = text.WidthOf(object.Problem(), kTextHeight) * 3 / 4;
    const auto lines = text.Wrapped(object.Problem(), kTextHeight, width);
    ASSERT_EQ(lines.size(), 2U);
    Show(width + 2 * page.Style().margin);
    EXPECT_NEAR(RedBelow(object, kSecondLine, kThirdLine - 1).Width(),
                text.WidthOf(lines[0], kTextHeight), 4);
    EXPECT_NEAR(RedBelow(object, kThirdLine, kEnd).Width(), text.WidthOf(lines[1], kTextHeight), 4);
}

TEST_F(CaptionsTest, AnErrorEndsBeforeTheNeighboursCaption)
{
    const EmbeddedObject& damaged = AddDamaged();
    const EmbeddedObject& neighbour = AddStarted("b");
    RunToEnd();
    Show(900);
    ASSERT_EQ(neighbour.Area().top, damaged.Area().top);
    EXPECT_LE(RedBelow(damaged, kSecondLine, kEnd).right, neighbour.Area().left - page.Style().gap);
}

TEST_F(CaptionsTest, ALongOneLeavesNothingBehindWhenANeighbourComes)
{
    const EmbeddedObject& damaged = AddDamaged();
    Show(900);
    const EmbeddedObject& neighbour = Add("b");
    ASSERT_GT(RedBelow(damaged, kSecondLine, kEnd).right, damaged.Area().left + 176 + 20);
    page.DrawChanges();
    captions.Update(nullptr);
    ASSERT_EQ(neighbour.Area().left, damaged.Area().left + 176 + 20);
    EXPECT_LE(RedBelow(damaged, kSecondLine, kEnd).right, neighbour.Area().left - 20);
}

TEST_F(CaptionsTest, WhatStandsInTheMiddleHasItsCaptionThere)
{
    const EmbeddedObject& object = AddDamaged();
    viewer::Page::Shape shape = page.CurrentShape();
    shape.single = viewer::Page::Single::kInMiddle;
    page.Reshape(shape);
    Show(900);
    const Extent line = RedBelow(object, kSecondLine, kThirdLine);
    EXPECT_NEAR((line.left + line.right) / 2, 450, 3);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "viewer/text/Paragraphs.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

using viewer::Page;
using viewer::Paragraphs;

constexpr int kLine = 21;
constexpr int kMargin = 10;
constexpr int kGap = 6;
const std::string kWords = "some words that make a paragraph, and some more words to go with them";

class ParagraphsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!viewer::TextPainter().HasFont()) {
            GTEST_SKIP() << "this system has no font where fonts usually are";
        }
        paragraphs = std::make_unique<Paragraphs>(page);
        page.SetStyle({kMargin, 8, 30, 0, 0xF4, kGap}, Page::Height::kGrows);
    }

    void Show()
    {
        page.DrawChanges();
        paragraphs->Update();
    }
    int Top(size_t index) const { return page.Texts().Area(index).top; }
    int HeightOf(size_t index) const { return page.Texts().Area(index).bottom - Top(index); }
    // Pixels of the rectangle in another grey than the page's.
    int InkIn(const Rect& rect) const
    {
        SInt32 rowBytes = 0;
        const UInt8* pixels = GetPortPixels(page.Port(), &rowBytes);
        int count = 0;
        for (int v = rect.top; v < rect.bottom; ++v) {
            for (int h = rect.left; h < rect.right; ++h) {
                count += pixels[v * rowBytes + h * 4 + 1] != 0xF4 ? 1 : 0;
            }
        }
        return count;
    }

    Page page{300, 200};
    std::unique_ptr<Paragraphs> paragraphs;
};

TEST_F(ParagraphsTest, AShortOneIsALineHigh)
{
    page.Texts().Add({"short", 0});
    Show();
    EXPECT_EQ(Top(0), kMargin);
    EXPECT_EQ(HeightOf(0), kLine);
    EXPECT_GT(InkIn(page.Texts().Area(0)), 0);
}

TEST_F(ParagraphsTest, OneStandsBelowTheOther)
{
    page.Texts().Add({"one", 0});
    page.Texts().Add({"other", 0});
    Show();
    EXPECT_EQ(Top(1), kMargin + kLine + kGap);
}

TEST_F(ParagraphsTest, ALongOneIsWrappedToThePagesWidth)
{
    page.Texts().Add({kWords, 0});
    Show();
    EXPECT_EQ(HeightOf(0), 2 * kLine);
    EXPECT_EQ(InkIn({0, 300 - kMargin, 200, 300}), 0);
}

TEST_F(ParagraphsTest, ANarrowerPageWrapsThemAgain)
{
    page.Texts().Add({kWords, 0});
    Show();
    page.Reshape({160, 200});
    Show();
    EXPECT_GE(HeightOf(0), 4 * kLine);
    EXPECT_GT(InkIn({static_cast<SInt16>(Top(0) + 3 * kLine), 0,
                     static_cast<SInt16>(Top(0) + 4 * kLine), 160}),
              0);
}

TEST_F(ParagraphsTest, ZoomEnlargesThem)
{
    page.Texts().Add({"short", 0});
    page.Texts().Add({"short", 0});
    Show();
    const int before = InkIn(page.Texts().Area(0));
    page.Reshape({300, 200, 2.0});
    Show();
    EXPECT_EQ(HeightOf(0), 2 * kLine);
    EXPECT_EQ(Top(1), kMargin + 2 * kLine + 2 * kGap);
    EXPECT_GT(InkIn(page.Texts().Area(0)), 2 * before);
}

TEST_F(ParagraphsTest, ThePageIsAsHighAsTheyAre)
{
    for (int i = 0; i < 20; ++i) {
        page.Texts().Add({"line", 0});
    }
    Show();
    EXPECT_EQ(page.ContentHeight(), 2 * kMargin + 20 * kLine + 19 * kGap);
    EXPECT_GT(InkIn(page.Texts().Area(19)), 0);
}

TEST_F(ParagraphsTest, AreWrittenOnceAsLongAsNothingMoves)
{
    page.Texts().Add({"short", 0});
    Show();
    page.TakeChanges();
    Show();
    EXPECT_TRUE(page.TakeChanges().empty());
}

TEST_F(ParagraphsTest, ComeBackAfterThePageWasWiped)
{
    page.Texts().Add({"short", 0});
    Show();
    const int before = InkIn(page.Texts().Area(0));
    page.Reshape({300, 240});
    Show();
    EXPECT_EQ(InkIn(page.Texts().Area(0)), before);
}

TEST_F(ParagraphsTest, OneThatGoesBeyondTheLastCoordinateIsCutOffThere)
{
    std::string endless;
    for (int i = 0; i < 3000; ++i) {
        endless += "line\n";
    }
    page.Texts().Add({endless, 0});
    page.Texts().Add({"unseen", 0});
    Show();
    EXPECT_EQ(page.ContentHeight(), 32767);
    EXPECT_EQ(HeightOf(1), 0);
}

TEST(ParagraphsWithoutFont, TakeNoRoom)
{
    Page page(300, 200);
    Paragraphs paragraphs(page, "/nonexistent.ttf");
    page.SetStyle({kMargin, 8, 30, 0, 0xF4, kGap}, Page::Height::kGrows);
    page.Texts().Add({kWords, 0});
    page.DrawChanges();
    EXPECT_EQ(page.ContentHeight(), 0);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "viewer/text/TextPainter.h"

#include <gtest/gtest.h>

namespace
{

using viewer::Canvas;
using viewer::TextPainter;

constexpr int kHeight = 13;

class TextPainterTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!text.HasFont()) {
            GTEST_SKIP() << "this system has no font where fonts usually are";
        }
    }

    TextPainter text;
};

TEST_F(TextPainterTest, LongerTextIsWider)
{
    EXPECT_EQ(text.WidthOf("", kHeight), 0);
    EXPECT_GT(text.WidthOf("movie", kHeight), text.WidthOf("mov", kHeight));
    EXPECT_GT(text.WidthOf("movie", 2 * kHeight), text.WidthOf("movie", kHeight));
}

TEST_F(TextPainterTest, ACharacterOfManyBytesIsOne)
{
    EXPECT_LT(text.WidthOf("\u00E4", kHeight), text.WidthOf("aa", kHeight));
    EXPECT_LT(text.WidthOf("\u0416", kHeight), text.WidthOf("WW", kHeight));
}

TEST_F(TextPainterTest, BytesThatAreNoTextDoNoHarm)
{
    EXPECT_GT(text.WidthOf("\xFF\xC3", kHeight), 0);
    EXPECT_GT(text.WidthOf("\xE2\x82", kHeight), 0);
}

TEST_F(TextPainterTest, TextThatFitsIsLeftAlone)
{
    EXPECT_EQ(text.Shortened("movie.mpg", kHeight, 1000), "movie.mpg");
}

TEST_F(TextPainterTest, TextThatIsTooWideEndsInAnEllipsisAndFits)
{
    const std::string shortened = text.Shortened("a very long name of a movie", kHeight, 80);
    EXPECT_TRUE(shortened.starts_with("a very"));
    EXPECT_TRUE(shortened.ends_with("\u2026"));
    EXPECT_LE(text.WidthOf(shortened, kHeight), 80);
}

TEST_F(TextPainterTest, LinesAreBrokenAtSpaces)
{
    const std::vector<std::string> lines = text.Wrapped("there is no movie in it", kHeight, 80);
    ASSERT_GT(lines.size(), 1U);
    std::string joined = lines[0];
    for (size_t i = 1; i < lines.size(); ++i) {
        joined += " " + lines[i];
    }
    EXPECT_EQ(joined, "there is no movie in it");
}

TEST_F(TextPainterTest, ALineHoldsAsManyWordsAsFit)
{
    const SInt32 width = text.WidthOf("there is no", kHeight);
    EXPECT_EQ(text.Wrapped("there is no movie", kHeight, width),
              (std::vector<std::string>{"there is no", "movie"}));
    EXPECT_EQ(text.Wrapped("there is no movie", kHeight, width - 1),
              (std::vector<std::string>{"there is", "no movie"}));
}

TEST_F(TextPainterTest, ALineEndsWhereItsAuthorEndedIt)
{
    EXPECT_EQ(text.Wrapped("a\n\n  b", kHeight, 200), (std::vector<std::string>{"a", "", "  b"}));
}

TEST_F(TextPainterTest, BlanksAtABreakAreDropped)
{
    const SInt32 width = text.WidthOf("movie", kHeight);
    EXPECT_EQ(text.Wrapped("movie    movie   ", kHeight, width),
              (std::vector<std::string>{"movie", "movie"}));
}

TEST_F(TextPainterTest, AWordThatIsTooLongForALineIsBrokenBetweenCharacters)
{
    const std::string word = "Gl\u00FCcksw\u00FCrfelspielger\u00E4t";
    std::string joined;
    for (const std::string& line : text.Wrapped(word, kHeight, 40)) {
        EXPECT_LE(text.WidthOf(line, kHeight), 40);
        EXPECT_NE(static_cast<UInt8>(line[0]) & 0xC0, 0x80);
        joined += line;
    }
    EXPECT_EQ(joined, word);
}

TEST_F(TextPainterTest, ACharacterThatIsTooWideForALineHasOneOfItsOwn)
{
    EXPECT_EQ(text.Wrapped("WW", kHeight, 1), (std::vector<std::string>{"W", "W"}));
}

TEST_F(TextPainterTest, WritesAboveItsBaseLine)
{
    std::vector<UInt8> pixels(40 * 40 * 4);
    Canvas canvas{pixels.data(), 40 * 4, {0, 0, 40, 40}};
    text.Write(canvas, 5, 20, "H", kHeight, {255, 255, 255});
    int above = 0;
    int below = 0;
    for (size_t i = 1; i < pixels.size(); i += 4) {
        (i < 20 * 40 * 4 ? above : below) += pixels[i] != 0 ? 1 : 0;
    }
    EXPECT_GT(above, 0);
    EXPECT_EQ(below, 0);
}

TEST(TextPainterWithoutFont, WritesNothing)
{
    TextPainter text("/nonexistent.ttf");
    std::vector<UInt8> pixels(40 * 40 * 4);
    Canvas canvas{pixels.data(), 40 * 4, {0, 0, 40, 40}};
    text.Write(canvas, 5, 20, "H", kHeight, {255, 255, 255});
    EXPECT_EQ(pixels, std::vector<UInt8>(40 * 40 * 4));
    EXPECT_EQ(text.Shortened("any text", kHeight, 10), "any text");
}

} // namespace

// SPDX-License-Identifier: MIT
#include "viewer/mail/PlainText.h"
#include "viewer/mail/HtmlCharacters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using viewer::CharsetOfHtml;
using viewer::ParagraphsOf;
using viewer::TextOfHtml;

std::vector<std::string> HtmlParagraphs(const std::string& html)
{
    return ParagraphsOf(TextOfHtml(html));
}

TEST(Paragraphs, ArePartedByEmptyLines)
{
    EXPECT_THAT(ParagraphsOf("one\ntwo\n\nthree\n \t\n\nfour"),
                ElementsAre("one\ntwo", "three", "four"));
}

TEST(Paragraphs, EndTheirLinesAsAnySystemDoes)
{
    EXPECT_THAT(ParagraphsOf("one\r\ntwo\r\n\r\nthree\r\n"), ElementsAre("one\ntwo", "three"));
}

TEST(Paragraphs, HoldNoControlCharacters)
{
    EXPECT_THAT(ParagraphsOf(std::string("a\0b\x1B[1mc\td", 10)), ElementsAre("ab[1mc d"));
}

TEST(Paragraphs, NothingHasNone)
{
    EXPECT_THAT(ParagraphsOf(""), IsEmpty());
    EXPECT_THAT(ParagraphsOf("\n \n\r\n"), IsEmpty());
}

TEST(Html, BlocksAreParagraphs)
{
    EXPECT_THAT(HtmlParagraphs("<html><body><h1>Title</h1><p>One <b>two</b>"
                               "<p>three<div>four</div></body></html>"),
                ElementsAre("Title", "One two", "three", "four"));
}

TEST(Html, WhiteSpaceIsOneBlank)
{
    EXPECT_THAT(HtmlParagraphs("<p>\n  one\n  two\t <i> three</i>\n</p>"),
                ElementsAre("one two three"));
}

TEST(Html, ABreakEndsALine)
{
    EXPECT_THAT(HtmlParagraphs("one<br>\n two<BR/>three"), ElementsAre("one\ntwo\nthree"));
}

TEST(Html, ScriptsStylesTitlesAndCommentsAreNoText)
{
    EXPECT_THAT(HtmlParagraphs("<title>t</title><style>p { color: red }</style>a"
                               "<script>if (a < b) { '</p>' }</script>b<!-- <p>c -->d"),
                ElementsAre("abd"));
}

TEST(Html, CharactersThatAreNamedOrNumberedArePutIn)
{
    EXPECT_THAT(HtmlParagraphs("a&nbsp;&lt;b&gt; &amp; &#228;&#xE4;&auml; &euro; &#128512;"),
                ElementsAre("a <b> & \u00E4\u00E4\u00E4 \u20AC \U0001F600"));
}

TEST(Html, WhatOnlyLooksLikeACharacterOrATagIsText)
{
    EXPECT_THAT(HtmlParagraphs("a & b < c &unknown; R&D &#x110000; &#0;"),
                ElementsAre("a & b < c &unknown; R&D \uFFFD \uFFFD"));
}

TEST(Html, AnAttributeMayHoldTheEndOfATag)
{
    EXPECT_THAT(HtmlParagraphs("<p title=\"a > b\">text"), ElementsAre("text"));
}

TEST(Html, MayEndAnywhere)
{
    const std::string html = "<p>one</p><script>x</script><!-- c --><img src=\"x\">&amp;two";
    for (size_t length = 0; length <= html.size(); ++length) {
        const std::string text = TextOfHtml(html.substr(0, length));
        EXPECT_LE(text.size(), length + 1);
    }
    EXPECT_EQ(TextOfHtml("<script>never closed"), "");
}

TEST(HtmlCharset, IsTheOneNamedNearTheStart)
{
    EXPECT_EQ(CharsetOfHtml("<meta charset=UTF-8>"), "utf-8");
    EXPECT_EQ(CharsetOfHtml("<META CHARSET=\"KOI8-R\"/>"), "koi8-r");
    EXPECT_EQ(CharsetOfHtml("<meta content=\"text/html; charset=iso-8859-1\">"), "iso-8859-1");
    EXPECT_EQ(CharsetOfHtml("<meta charset="), "");
    EXPECT_EQ(CharsetOfHtml("<meta charset=\""), "");
    EXPECT_EQ(CharsetOfHtml("<p>text"), "");
    EXPECT_EQ(CharsetOfHtml(std::string(1024, ' ') + "<meta charset=utf-8>"), "");
}

} // namespace

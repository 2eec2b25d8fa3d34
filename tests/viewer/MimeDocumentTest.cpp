// SPDX-License-Identifier: MIT
#include "viewer/MimeDocument.h"
#include "tests/viewer/TestFiles.h"
#include "toolbox/Errors.h"
#include "viewer/DocumentOpening.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using viewer::FileDescriptor;
using viewer::MimeDocument;
using viewer::MimeItem;
using viewer::MimeMedium;
using viewer::SourceFailure;

const std::string kHeader = "From: a@example.org\r\nSubject: s\r\nMIME-Version: 1.0\r\n";

MimeDocument Read(const std::string& text, const std::string& contentType = {})
{
    const TestFolder folder;
    return viewer::ReadMimeDocument(
        FileDescriptor(open(folder.Write("mail", text).c_str(), O_RDONLY)), contentType);
}

SourceFailure FailureOf(const std::string& text)
{
    try {
        Read(text);
    } catch (const SourceFailure& failure) {
        return failure;
    }
    return {};
}

std::string BytesOf(viewer::ByteSource& source)
{
    source.Pump(INT32_MAX);
    std::string bytes(static_cast<size_t>(source.Received()), '\0');
    source.Read(bytes.data(), 0, source.Received());
    return bytes;
}

// "text", or "<NAME|TYPE|BYTES>" for an object.
std::vector<std::string> Describe(const MimeDocument& document)
{
    std::vector<std::string> texts;
    for (const MimeItem& item : document.items) {
        if (const auto* const medium = std::get_if<MimeMedium>(&item)) {
            texts.push_back("<" + medium->fileName + "|" + medium->source->DeclaredType() + "|" +
                            BytesOf(*medium->source) + ">");
        } else {
            texts.push_back(std::get<std::string>(item));
        }
    }
    return texts;
}

std::string Part(const std::string& header, const std::string& body)
{
    return "--xx\r\n" + header + "\r\n\r\n" + body + "\r\n";
}

std::string Multipart(const std::string& kind, const std::vector<std::string>& parts,
                      const std::string& boundary = "xx")
{
    std::string text = "Content-Type: multipart/" + kind + "; boundary=" + boundary + "\r\n\r\n";
    for (const std::string& part : parts) {
        text += part;
    }
    return text + "--" + boundary + "--\r\n";
}

const std::string kGif = "Content-Type: image/gif; name=\"a.gif\"";

TEST(MimeDocument, TextIsParagraphsAndMediaAreObjects)
{
    const MimeDocument document =
        Read(kHeader +
             Multipart("mixed", {Part("Content-Type: text/plain", "one\r\n\r\ntwo"),
                                 Part(kGif + "\r\nContent-Transfer-Encoding: base64", "R0lGODlh"),
                                 Part("Content-Type: text/plain", "three")}));
    EXPECT_THAT(Describe(document), ElementsAre("one", "two", "<a.gif|image/gif|GIF89a>", "three"));
    EXPECT_THAT(document.messages, IsEmpty());
}

TEST(MimeDocument, IsDecodedAsItsPartsSay)
{
    const std::string base64 = "Content-Transfer-Encoding: base64";
    const MimeDocument document =
        Read(kHeader +
             Multipart("mixed",
                       {Part("Content-Type: text/plain; charset=iso-8859-1\r\n"
                             "Content-Transfer-Encoding: quoted-printable",
                             "f=FCr=\r\n dich"),
                        Part("Content-Type: text/plain; charset=utf-8\r\n" + base64, "w6TDtsO8"),
                        Part("Content-Type: audio/mpeg\r\nContent-Transfer-Encoding: x-uuencode",
                             "begin 644 a.mp3\r\n#0V%T\r\n`\r\nend")}));
    EXPECT_THAT(Describe(document),
                ElementsAre("f\u00FCr dich", "\u00E4\u00F6\u00FC", "<|audio/mpeg|Cat>"));
}

TEST(MimeDocument, AnUnknownCharacterSetIsShownAsFarAsItCanBe)
{
    const MimeDocument document =
        Read(kHeader + "Content-Type: text/plain; charset=no-such\r\n\r\nplain \xFF text\r\n");
    EXPECT_THAT(Describe(document), ElementsAre("plain \uFFFD text"));
}

TEST(MimeDocument, HtmlNamesItsCharactersItselfWhereItsFieldsDoNot)
{
    const std::string meta = "<meta content=\"text/html; charset=ISO-8859-1\">";
    const auto texts = [](const std::string& fields, const std::string& html) {
        return Describe(Read(kHeader + fields + "\r\n\r\n" + html + "\r\n"));
    };
    const std::string html = "Content-Type: text/html";
    EXPECT_THAT(texts(html, meta + "a\xB7z"), ElementsAre("a\u00B7z"));
    EXPECT_THAT(texts(html, meta + "a\u00B7z"), ElementsAre("a\u00B7z")); // UTF-8 it is
    EXPECT_THAT(texts(html + "; charset=cp850", meta + "a\xFAz"), ElementsAre("a\u00B7z"));
    EXPECT_THAT(texts(html, "<meta charset=no-such>a\xB7z"), ElementsAre("a\uFFFDz"));
}

TEST(MimeDocument, OfAlternativesThePlainTextIsRead)
{
    const std::string related = "Content-Type: multipart/related; boundary=yy\r\n\r\n"
                                "--yy\r\nContent-Type: text/html\r\n\r\n<p>html</p>\r\n"
                                "--yy\r\n" +
                                kGif + "\r\nContent-ID: <1@x>\r\n\r\npixels\r\n--yy--\r\n";
    const MimeDocument document =
        Read(kHeader + Multipart("alternative", {Part("Content-Type: text/plain", "plain"),
                                                 "--xx\r\n" + related}));
    EXPECT_THAT(Describe(document), ElementsAre("plain", "<a.gif|image/gif|pixels>"));
}

TEST(MimeDocument, HtmlAloneIsReadAsPlainText)
{
    const MimeDocument document =
        Read(kHeader + "Content-Type: text/html\r\n\r\n<h1>One</h1><p>two &amp; three\r\n");
    EXPECT_THAT(Describe(document), ElementsAre("One", "two & three"));
}

TEST(MimeDocument, WhatIsThereTwiceUnderOneIdIsShownOnce)
{
    const std::string same = Part(kGif + "\r\nContent-ID: <1@x>", "pixels");
    EXPECT_THAT(Describe(Read(kHeader + Multipart("related", {same, same}))),
                ElementsAre("<a.gif|image/gif|pixels>"));
}

TEST(MimeDocument, AMessageInsideIsReadToo)
{
    const MimeDocument document = Read(
        kHeader + Multipart("mixed", {Part("Content-Type: message/rfc822",
                                           "Subject: inner\r\nContent-Type: image/png\r\n\r\nx")}));
    EXPECT_THAT(Describe(document), ElementsAre("<|image/png|x>"));
}

TEST(MimeDocument, NamesComeFromTheDispositionTheTypeOrTheLocation)
{
    const MimeDocument document = Read(
        kHeader +
        Multipart("mixed",
                  {Part("Content-Type: image/gif; name=b.gif\r\n"
                        "Content-Disposition: attachment; filename=\"../../etc/a.gif\"",
                        "1"),
                   Part("Content-Type: image/gif; name=b.gif", "2"),
                   Part("Content-Type: image/gif\r\nContent-Location: http://x/y/c.gif?z=/d", "3"),
                   Part("Content-Type: image/gif", "4")}));
    EXPECT_THAT(Describe(document), ElementsAre("<a.gif|image/gif|1>", "<b.gif|image/gif|2>",
                                                "<c.gif|image/gif|3>", "<|image/gif|4>"));
}

std::string NameOf(const std::string& fields)
{
    const MimeDocument document = Read(kHeader + fields + "\r\n\r\npixels\r\n");
    return std::get<MimeMedium>(document.items.at(0)).fileName;
}

TEST(MimeDocument, EscapesAreTakenOutOfNamesInQuotesAndWithout)
{
    const std::string saved =
        "Content-Type: image/gif\r\nContent-Disposition: attachment; filename=";
    EXPECT_EQ(NameOf(saved + R"("say \"ah\" \(1\).gif")"), "say \"ah\" (1).gif");
    EXPECT_EQ(NameOf(saved + R"(say\ \"ah\"\ \(1\).gif)"), "say \"ah\" (1).gif");
    EXPECT_EQ(NameOf(R"(Content-Type: image/gif; name = x\,y.gif)"), "x,y.gif");
}

TEST(MimeDocument, ABackslashBetweenFoldersIsNoEscape)
{
    const std::string saved =
        "Content-Type: image/gif\r\nContent-Disposition: attachment; filename=";
    EXPECT_EQ(NameOf(saved + R"("C:\\new\\a.gif")"), "a.gif");
    EXPECT_EQ(NameOf(saved + R"(C:\new\a.gif)"), "a.gif");
    EXPECT_EQ(NameOf(saved + R"(..\/..\/a.gif)"), "a.gif");
}

TEST(MimeDocument, BytesOfNoTypeAreAnObjectIfTheyHaveAFilesName)
{
    const MimeDocument document =
        Read(kHeader +
             Multipart("mixed", {Part("Content-Type: application/octet-stream; name=a.mpg", "1")}));
    EXPECT_THAT(Describe(document), ElementsAre("<a.mpg||1>"));
}

TEST(MimeDocument, AttachmentsThatCannotBeShownAreTold)
{
    const MimeDocument document = Read(
        kHeader + Multipart("mixed", {Part("Content-Type: text/plain", "text"),
                                      Part("Content-Type: text/css", "p {}"),
                                      Part("Content-Type: application/pdf\r\n"
                                           "Content-Disposition: attachment; filename=report.pdf",
                                           "%PDF")}));
    EXPECT_THAT(Describe(document), ElementsAre("text"));
    EXPECT_THAT(document.messages,
                ElementsAre("report.pdf (application/pdf) is neither text nor a medium"));
}

TEST(MimeDocument, OfOneThatBreaksOffIsShownWhatIsThere)
{
    const std::string whole = kHeader + Multipart("mixed", {Part("Content-Type: text/plain", "one"),
                                                            Part(kGif, "pixels")});
    EXPECT_THAT(Describe(Read(whole.substr(0, whole.find("ixels")))),
                ElementsAre("one", "<a.gif|image/gif|p>"));
}

TEST(MimeDocument, AnyDocumentMayBreakOffAnywhere)
{
    const std::string whole =
        kHeader +
        Multipart("mixed", {Part("Content-Type: text/plain", "one"),
                            Part(kGif + "\r\nContent-Transfer-Encoding: base64", "R0lGODlh")});
    for (size_t length = 0; length < whole.size(); ++length) {
        try {
            Describe(Read(whole.substr(0, length)));
        } catch (const SourceFailure& failure) {
            EXPECT_EQ(failure.error, paramErr) << length;
        }
    }
}

TEST(MimeDocument, WithoutTextAndMediaThereIsNothingToShow)
{
    EXPECT_EQ(FailureOf(kHeader + "Content-Type: application/pdf\r\n\r\n%PDF\r\n").error, paramErr);
    EXPECT_THAT(FailureOf(kHeader + "Content-Type: application/pdf\r\n\r\n%PDF\r\n").text,
                HasSubstr("no text and no medium"));
    EXPECT_EQ(FailureOf("").error, paramErr);
}

TEST(MimeDocument, HasMoreThanAThousandPartsForNobody)
{
    const std::vector<std::string> parts(2000, Part("Content-Type: text/plain", "x"));
    const MimeDocument document = Read(kHeader + Multipart("mixed", parts));
    EXPECT_LT(document.items.size(), 1001u);
    EXPECT_THAT(document.messages, ElementsAre(HasSubstr("more parts or text")));
}

TEST(MimeDocument, HasNoMoreTextThanAPageCanHold)
{
    const MimeDocument document =
        Read(kHeader + "Content-Type: text/plain\r\n\r\n" + std::string(3 << 20, 'x'));
    ASSERT_EQ(document.items.size(), 1u);
    EXPECT_LT(std::get<std::string>(document.items[0]).size(), 2u << 20);
    EXPECT_THAT(document.messages, ElementsAre(HasSubstr("more parts or text")));
}

TEST(MimeDocument, MayBeNestedAsDeepAsItLikes)
{
    std::string text;
    for (int i = 0; i < 5000; ++i) {
        const std::string boundary = "b" + std::to_string(i);
        text += "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n--" + boundary +
                "\r\n";
    }
    const std::string part = "Content-Type: text/plain\r\n\r\ndeep\r\n";
    EXPECT_EQ(FailureOf(kHeader + text + part).error, paramErr);
}

TEST(MimeDocument, AMediumIsDecodedAsFarAsItIsWanted)
{
    const std::string body(1'000'000, 'x');
    MimeDocument document = Read(kHeader + "Content-Type: video/mpeg\r\n\r\n" + body);
    viewer::ByteSource& source = *std::get<MimeMedium>(document.items.at(0)).source;
    source.Pump(10'000);
    EXPECT_GE(source.Received(), 10'000);
    EXPECT_LT(source.Received(), 50'000);
    EXPECT_EQ(source.EstimatedBytes(), -1);
    EXPECT_EQ(BytesOf(source), body);
    EXPECT_EQ(source.EstimatedBytes(), 1'000'000);
    EXPECT_TRUE(source.IsComplete());
}

TEST(MimeDocument, WithoutAHeaderOfItsOwnHasTheOneThatCameAlong)
{
    const std::string gif = Part(kGif, "GIF89a");
    const std::string parts = gif + Part("Content-Type: text/plain", "one") + gif + "--xx--\r\n";
    const auto shown = ElementsAre("<a.gif|image/gif|GIF89a>", "one", "<a.gif|image/gif|GIF89a>");
    const std::string type = "Multipart/Mixed; boundary=\"xx\"";
    EXPECT_THAT(Describe(Read(parts, type)), shown);
    EXPECT_THAT(Describe(Read("It has several parts.\r\n" + parts, type)), shown);
    EXPECT_THAT(Describe(Read(parts, "multipart/mixed;\r\n boundary=xx")), shown);
}

TEST(MimeDocument, IsReadWithoutAComplaintOfTheLibraryThoughItsTypeComesAlong)
{
    testing::internal::CaptureStderr();
    const std::string parts = Part(kGif, "GIF89a") + "--xx--\r\n";
    Describe(Read(parts, "multipart/mixed; boundary=xx"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MimeDocument, IsWholeBehindATypeThatCameAlongHoweverLongItIs)
{
    const std::string body(300'000, 'x');
    const std::string boundary(60, 'b');
    const MimeDocument document =
        Read("--" + boundary + "\r\n" + kGif + "\r\n\r\n" + body + "\r\n--" + boundary + "--\r\n",
             "multipart/mixed; x=" + std::string(9000, 'y') + "; boundary=" + boundary);
    EXPECT_THAT(Describe(document), ElementsAre("<a.gif|image/gif|" + body + ">"));
}

TEST(MimeDocument, WithAHeaderOfItsOwnNeedsNoOther)
{
    const std::string mail = kHeader + Multipart("mixed", {Part(kGif, "GIF89a")});
    const auto shown = ElementsAre("<a.gif|image/gif|GIF89a>");
    EXPECT_THAT(Describe(Read(mail, "multipart/mixed; boundary=yy")), shown);
    EXPECT_THAT(Describe(Read("From a@b.example Mon\n" + mail, "multipart/mixed; boundary=yy")),
                shown);
}

TEST(MimeDocument, IsKnownByItsNameOrItsFirstLines)
{
    EXPECT_TRUE(viewer::IsMimeDocument("a.EML", ""));
    EXPECT_TRUE(viewer::IsMimeDocument("a.mhtml", ""));
    EXPECT_TRUE(viewer::IsMimeDocument("a.mht", ""));
    EXPECT_TRUE(viewer::IsMimeDocument("a", kHeader + "\r\nbody"));
    EXPECT_TRUE(viewer::IsMimeDocument("a", "From x@y Mon\nSubject: a\n b\nContent-Type: x/y\n\n"));
    EXPECT_FALSE(viewer::IsMimeDocument("a", "Subject: a\n\nMIME-Version: 1.0\n\n"));
    EXPECT_FALSE(viewer::IsMimeDocument("a", "Some text.\nMIME-Version: 1.0\n\n"));
    EXPECT_FALSE(viewer::IsMimeDocument("a.mpg", std::string("\0\0\1\xBA", 4)));
    EXPECT_FALSE(viewer::IsMimeDocument("a", ""));
}

TEST(OpenDocument, LeavesTheRestToTheSources)
{
    const TestFolder folder;
    const std::string mail = folder.Write("mail", kHeader + "\r\ntext\r\n");
    const auto isDocument = [](const std::string& location, const std::string& type) {
        return viewer::OpenDocument({location, type, 0}).has_value();
    };
    EXPECT_TRUE(isDocument(mail, ""));
    EXPECT_TRUE(isDocument(folder.Write("x", "a: b\n\ntext\n"), "message/rfc822"));
    EXPECT_FALSE(isDocument(mail, "video/mpeg"));
    EXPECT_FALSE(isDocument(folder.Path("nothing.eml"), ""));
    EXPECT_FALSE(isDocument(folder.Path("."), ""));
    EXPECT_FALSE(isDocument(folder.Write("picture.eml", "\x89PNG\r\n\x1A\n"), ""));
}

// Programs that pass a document on may change some of its line ends.
TEST(MimeDocument, APartIsWholeHoweverTheLinesAroundItEnd)
{
    for (const std::string before : {"\r\n", "\n"}) {
        for (const std::string after : {"\r\n", "\n"}) {
            const std::string edge = before + "--edge";
            const std::string part = after + "Content-Type: image/x\r\n\r\n";
            const std::string parts =
                edge + part + "abc" + edge + part + "" + edge + part + "d\n" + edge + "--" + after;
            const std::string type = "multipart/mixed; boundary=edge";
            const auto shown = ElementsAre("<|image/x|abc>", "<|image/x|>", "<|image/x|d\n>");
            EXPECT_THAT(Describe(Read(kHeader + "Content-Type: " + type + "\r\n" + parts)), shown)
                << before.size() << " and " << after.size();
            EXPECT_THAT(Describe(Read(parts, type)), shown)
                << before.size() << " and " << after.size() << ", the type coming along";
        }
    }
}

} // namespace

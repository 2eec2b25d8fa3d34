// SPDX-License-Identifier: MIT
//
// The program on e-mails, web archives and folders.
#include "tests/viewer/Base64.h"
#include "tests/viewer/EndToEnd.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace
{

using testing::HasSubstr;

// A picture of one black pixel.
const std::string kGif("GIF89a\1\0\1\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35);

// As browsers save pages.
class WebArchive
{
public:
    WebArchive()
    {
        text_ = "From: <Saved by a browser>\r\nSubject: a page\r\nMIME-Version: 1.0\r\n"
                "Content-Type: multipart/related; type=\"text/html\";\r\n boundary=\"" +
                kBoundary + "\"\r\n\r\n";
    }
    void AddHtml(const std::string& html)
    {
        text_ += "--" + kBoundary + "\r\nContent-Type: text/html\r\n\r\n" + html + "\r\n";
    }
    void AddFile(const std::string& name, const std::string& type, const std::string& bytes)
    {
        text_ += "--" + kBoundary + "\r\nContent-Type: " + type +
                 "\r\nContent-Transfer-Encoding: base64\r\nContent-Location: http://host/" + name +
                 "\r\n\r\n" + Base64(bytes);
    }
    std::string Text() const { return text_ + "--" + kBoundary + "--\r\n"; }

private:
    const std::string kBoundary = "----MultipartBoundary--abcdef0123456789----";
    std::string text_;
};

TEST_F(EndToEnd, AWebArchiveOfTwentyObjectsIsShown)
{
    WebArchive archive;
    archive.AddHtml("<h1>Twenty objects</h1><p>and this.");
    for (int i = 0; i < 10; ++i) {
        archive.AddFile("p" + std::to_string(i) + ".gif", "image/gif", kGif);
        archive.AddFile("m" + std::to_string(i), "video/mpeg", ReadFile(Clip("tiny.mpg")));
    }
    const std::string path = Write("page.mhtml", archive.Text());
    const ViewerResult result = Run({"--play", path});
    EXPECT_EQ(result.status, 0) << result.err;
    ASSERT_EQ(result.report["objects"].size(), 20u);
    for (size_t i = 0; i < 20; i += 2) {
        EXPECT_EQ(result.Object(i)["name"], path + ": p" + std::to_string(i / 2) + ".gif");
        EXPECT_EQ(result.Object(i)["plugin"], "VornGIF");
        EXPECT_EQ(result.Object(i)["complete"], true);
        EXPECT_EQ(result.Object(i + 1)["plugin"], "VornMovie");
        EXPECT_EQ(result.Object(i + 1)["pictures_shown"], PicturesOf("tiny.mpg"));
    }
    EXPECT_EQ(result.report["text"], nlohmann::json({"Twenty objects", "and this."}));
}

TEST_F(EndToEnd, AnEmailWithoutAnythingToShowIsTold)
{
    const ViewerResult result =
        Run({Write("empty.eml", "Subject: x\r\nContent-Type: application/pdf\r\n\r\n%PDF\r\n")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("there is no text and no medium in this document"));
}

TEST_F(EndToEnd, AnEmailOfTextAloneIsShown)
{
    const ViewerResult result =
        Run({Write("mail", "Subject: x\r\nMIME-Version: 1.0\r\n\r\nhello")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.report["objects"], nlohmann::json::array());
    EXPECT_EQ(result.report["text"], nlohmann::json({"hello"}));
}

TEST_F(EndToEnd, AFolderIsItsFiles)
{
    const std::string folder = viewer.Folder().Path("folder");
    std::filesystem::create_directory(folder);
    Write("folder/b.mpg", ReadFile(Clip("tiny.mpg")));
    Write("folder/a.mp3", ReadFile(Clip("sound.mp3")));
    Write("folder/c.txt", "text");
    const ViewerResult result = Run({folder});
    EXPECT_EQ(result.status, 0) << result.err;
    ASSERT_EQ(result.report["objects"].size(), 2u);
    EXPECT_EQ(result.Object(0)["name"], folder + "/a.mp3");
    EXPECT_EQ(result.Object(1)["name"], folder + "/b.mpg");
}

TEST_F(EndToEnd, AFolderWithoutFilesToShowIsTold)
{
    const std::string folder = viewer.Folder().Path("folder");
    std::filesystem::create_directory(folder);
    const ViewerResult result = Run({folder});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("no file in this folder that can be shown"));
}

TEST_F(EndToEnd, AnOutputIsNotAFileOfTheFolder)
{
    const std::string folder = viewer.Folder().Path("folder");
    std::filesystem::create_directory(folder);
    const std::string clip = Write("folder/b.mpg", ReadFile(Clip("tiny.mpg")));
    const ViewerResult result = Run({folder, "--snapshot", clip});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(ReadFile(clip) == ReadFile(Clip("tiny.mpg")));
}

TEST_F(EndToEnd, InfoIsATableAndNothingElse)
{
    const ViewerResult result =
        RunVornview({"--info", Clip("mpeg1.mpg"), Clip("sound.mp3")}, "/tmp");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const std::string size = std::to_string(ReadFile(Clip("mpeg1.mpg")).size());
    EXPECT_THAT(result.out,
                testing::MatchesRegex("NAME +TYPE +PLUG-IN +BYTES +SIZE +SECONDS  STATE\n"
                                      "[^\n]*/mpeg1.mpg  video/mpeg  VornMovie  " +
                                      size +
                                      "  352x240 +4\\.0[0-9]  ok\n"
                                      "[^\n]*/sound.mp3  audio/mpeg  VornMovie +[0-9]+ +- "
                                      "+5\\.0[0-9]  ok\n"));
}

TEST_F(EndToEnd, InfoTellsWhatCannotBeShown)
{
    const ViewerResult result = RunVornview({"--info", Write("x.txt", "text")}, "/tmp");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr("error -50\n"));
}

TEST_F(EndToEnd, RealEmailsHoldTheirObjects)
{
    const char* const media = std::getenv("VORN_TEST_MEDIA");
    if (media == nullptr || !std::filesystem::is_directory(std::string(media) + "/mail")) {
        GTEST_SKIP() << "VORN_TEST_MEDIA names no folder with mail";
    }
    // Those whose media are sound, by the list that came with them.
    const std::pair<const char*, std::vector<std::string>> kMails[] = {
        {"mimekit_multipart-related-mhtml.mhtml", {"image/png"}},
        {"nodemailer_base64encodedroot.eml", {"image/png"}},
        {"nodemailer_nodemailer.eml", {"image/png", "image/gif"}},
        {"phpmime_issue163.eml", {"image/jpeg"}},
        {"phpmime_m0129.eml", {"image/png"}},
        {"tika_testEmailWithPNGAtt.eml", {"image/png"}},
        {"tika_testMHTMLFirefox.mhtml", {"image/png"}},
        {"zbateson_m0011.eml", {"image/png", "image/png", "image/png"}},
        {"zbateson_m0017.eml", {"image/png", "image/png", "image/png"}},
        {"zbateson_m1005.eml", {"image/png", "image/png", "image/png", "image/png"}},
        {"zbateson_m1014.eml", {"image/png", "image/png", "image/png"}},
        {"zbateson_m4002.eml", {"image/png", "image/png", "image/png"}},
    };
    for (const auto& [name, types] : kMails) {
        const ViewerResult result = Run({std::string(media) + "/mail/" + name});
        EXPECT_EQ(result.status, 0) << name << ": " << result.err;
        std::vector<std::string> found;
        for (const auto& object : result.report["objects"]) {
            found.push_back(object["type"]);
        }
        EXPECT_EQ(found, types) << name;
    }
}

TEST_F(EndToEnd, NoRealEmailDoesHarm)
{
    const char* const media = std::getenv("VORN_TEST_MEDIA");
    if (media == nullptr || !std::filesystem::is_directory(std::string(media) + "/mail")) {
        GTEST_SKIP() << "VORN_TEST_MEDIA names no folder with mail";
    }
    for (const auto& entry : std::filesystem::directory_iterator(std::string(media) + "/mail")) {
        const ViewerResult result = Run({entry.path().string()});
        EXPECT_GE(result.status, 0) << entry.path();
        EXPECT_TRUE(result.report.is_object()) << entry.path();
    }
}

} // namespace

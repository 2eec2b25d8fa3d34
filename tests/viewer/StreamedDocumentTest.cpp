// SPDX-License-Identifier: MIT
//
// E-mails and web archives that come out of a stream: what is in them takes their place.
#include "tests/viewer/Base64.h"
#include "tests/viewer/EndToEnd.h"
#include "tests/viewer/PacedServer.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Mail(const std::string& moreHeader = "")
{
    return "From: a@b.example\r\nSubject: a clip\r\n" + moreHeader +
           "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=\"edge\"\r\n\r\n"
           "--edge\r\nContent-Type: text/plain\r\n\r\nabove\r\n"
           "--edge\r\nContent-Type: video/mpeg; name=\"one.mpg\"\r\n"
           "Content-Transfer-Encoding: base64\r\n\r\n" +
           Base64(ReadFile(Clip("tiny.mpg"))) +
           "--edge\r\nContent-Type: text/plain\r\n\r\nbelow\r\n"
           "--edge\r\nContent-Type: video/mpeg; name=\"two.mpg\"\r\n"
           "Content-Transfer-Encoding: base64\r\n\r\n" +
           Base64(ReadFile(Clip("tiny.mpg"))) + "--edge--\r\n";
}

class StreamedDocument : public EndToEnd
{
protected:
    ~StreamedDocument() override
    {
        if (writer.joinable()) {
            writer.join();
        }
    }
    // A FIFO through which somebody sends that.
    std::string Pipe(const std::string& bytes)
    {
        std::string path = viewer.Folder().Path("pipe");
        mkfifo(path.c_str(), 0600);
        writer = std::thread([path, bytes] {
            const int pipe = open(path.c_str(), O_WRONLY | O_CLOEXEC);
            for (size_t done = 0; done < bytes.size();) {
                const ssize_t count = write(pipe, bytes.data() + done, bytes.size() - done);
                if (count < 0) {
                    break;
                }
                done += static_cast<size_t>(count);
            }
            close(pipe);
        });
        return path;
    }
    std::string Serve(const std::string& path, const PacedReply& reply)
    {
        server.emplace([reply](const PacedRequest&) { return reply; });
        return server->Url(path);
    }
    static std::vector<std::string> Names(const ViewerResult& result)
    {
        std::vector<std::string> names;
        for (const auto& object : result.report["objects"]) {
            names.push_back(object["name"]);
        }
        return names;
    }

    std::thread writer;
    std::optional<PacedServer> server;
};

TEST_F(StreamedDocument, TakesItsPlaceBetweenTheOthersOfThePage)
{
    const std::string pipe = Pipe(Mail());
    const std::string mail =
        Write("other.eml", "MIME-Version: 1.0\r\nContent-Type: text/plain\r\n\r\nlast\r\n");
    const ViewerResult result = Run({"--play", Clip("silent.mpg"), pipe, mail, Clip("video.m1v")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(Names(result), ElementsAre(Clip("silent.mpg"), pipe + ": one.mpg",
                                           pipe + ": two.mpg", Clip("video.m1v")));
    for (const auto& object : result.report["objects"]) {
        EXPECT_GT(object["pictures_shown"], 1);
    }
    EXPECT_EQ(result.report["text"], nlohmann::json({"above", "below", "last"}));
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

TEST_F(StreamedDocument, IsKnownByAHeaderThatComesLate)
{
    const std::string pipe = Pipe(Mail("Received: " + std::string(3000, 'x') + "\r\n"));
    EXPECT_EQ(Run({pipe}).report["objects"].size(), 2U);
}

TEST_F(StreamedDocument, IsKnownByTheTypeThatTheUserGives)
{
    const std::string pipe = Pipe("Subject: nothing of its kind\n\nonly text\n");
    const ViewerResult result = Run({"--type", "message/rfc822", pipe});
    EXPECT_EQ(result.report["text"], nlohmann::json({"only text"}));
}

TEST_F(StreamedDocument, IsLeftAloneWhereTheUserSaysThatItIsSomethingElse)
{
    const ViewerResult result = Run({"--type", "video/mpeg", Pipe(Mail())});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.report["objects"].size(), 1U);
}

TEST_F(StreamedDocument, MayComeFromAServer)
{
    PacedReply reply;
    reply.body = Mail();
    const ViewerResult result = Run({Serve("/mail", reply)});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.report["objects"].size(), 2U);
}

TEST_F(StreamedDocument, IsKnownByTheTypeThatTheServerTells)
{
    PacedReply reply;
    reply.headers = {"Content-Type: message/rfc822"};
    reply.body = "Subject: nothing of its kind\n\nonly text\n";
    const ViewerResult result = Run({Serve("/x", reply)});
    EXPECT_EQ(result.report["text"], nlohmann::json({"only text"}));
}

// As a server gives out a document whose header it has made its own.
TEST_F(StreamedDocument, MayHaveItsBoundaryInTheServersHeaderAlone)
{
    const std::string mail = Mail();
    PacedReply reply;
    reply.headers = {"Content-Type: Multipart/Related; type=\"text/html\"; boundary=\"edge\""};
    reply.body = mail.substr(mail.find("--edge"));
    const ViewerResult result = Run({"--play", Serve("/page", reply)});
    EXPECT_EQ(result.status, 0) << result.err;
    ASSERT_EQ(result.report["objects"].size(), 2U);
    for (const auto& object : result.report["objects"]) {
        EXPECT_EQ(object["pictures_shown"], PicturesOf("tiny.mpg"));
    }
    EXPECT_EQ(result.report["text"], nlohmann::json({"above", "below"}));
}

TEST_F(StreamedDocument, KeepsTheHeaderThatItBeginsWith)
{
    PacedReply reply;
    reply.headers = {"Content-Type: multipart/mixed; boundary=\"another\""};
    reply.body = Mail();
    EXPECT_EQ(Run({Serve("/mail", reply)}).report["objects"].size(), 2U);
}

TEST_F(StreamedDocument, DoesNotKeepTheOthersWaiting)
{
    PacedReply reply;
    reply.body = Mail();
    reply.stallAfter = 5000;
    const ViewerResult result =
        Run({"--play", "--until", "1.5", Serve("/mail.eml", reply), Clip("silent.mpg")});
    EXPECT_EQ(result.report["objects"].size(), 2U);
    EXPECT_GT(result.Object(1)["pictures_shown"], 10);
}

TEST_F(StreamedDocument, WithNothingToShowIsTold)
{
    const ViewerResult result =
        Run({Pipe("MIME-Version: 1.0\r\nContent-Type: application/pdf\r\n\r\n%PDF\r\n")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("there is no text and no medium in this document"));
}

TEST_F(StreamedDocument, TextThatIsNoneIsNothingThatCanBeShown)
{
    const ViewerResult result = Run({Pipe("Dear all,\n\nthere is a colon: here.\n")});
    EXPECT_EQ(result.status, 1);
    EXPECT_FALSE(result.report.contains("text"));
}

} // namespace

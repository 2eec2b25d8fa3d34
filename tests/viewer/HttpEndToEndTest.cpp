// SPDX-License-Identifier: MIT
//
// The program and a web server, as fast as networks are.
#include "tests/viewer/EndToEnd.h"
#include "tests/viewer/PacedServer.h"

#include <gmock/gmock.h>

namespace
{

using testing::HasSubstr;
using testing::IsEmpty;

constexpr int64_t kKiB = 1024;

class OverHttp : public EndToEnd
{
protected:
    // Serves a clip at that speed; `change` makes the replies what the test wants.
    std::string Serve(
        const std::string& clip, int64_t bytesPerSecond,
        const std::function<void(const PacedRequest&, PacedReply&)>& change = [](const auto&,
                                                                                 auto&) {})
    {
        server = std::make_unique<PacedServer>(
            [=, body = ReadFile(Clip(clip))](const PacedRequest& request) {
                PacedReply reply = WithRanges(request, body);
                reply.bytesPerSecond = bytesPerSecond;
                change(request, reply);
                return reply;
            });
        return server->Url("/" + clip);
    }
    void ExpectFirstPictureBy82KiB(int64_t bytesPerSecond, const std::string& until)
    {
        const ViewerResult result = Run({"--until", until, Serve("mpeg1.mpg", bytesPerSecond)});
        const auto& first = result.Object()["first_picture"];
        ASSERT_TRUE(first.is_object()) << result.err;
        EXPECT_GT(first["bytes"], 64 * kKiB);
        EXPECT_LE(first["bytes"], 82 * kKiB);
    }

    std::unique_ptr<PacedServer> server;
};

TEST_F(OverHttp, TheFirstPictureIsThereBy82KiBAt32KiBASecond)
{
    ExpectFirstPictureBy82KiB(32 * kKiB, "4");
}

TEST_F(OverHttp, TheFirstPictureIsThereBy82KiBAt256KiBASecond)
{
    ExpectFirstPictureBy82KiB(256 * kKiB, "1");
}

TEST_F(OverHttp, TheFirstPictureIsThereBy82KiBAt1MiBASecond)
{
    ExpectFirstPictureBy82KiB(1024 * kKiB, "1");
}

TEST_F(OverHttp, AMoviePlaysFromItsFirstPictureWhileItArrives)
{
    const ViewerResult result = Run({"--play", Serve("mpeg1.mpg", 256 * kKiB)});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object()["pictures_shown"], PicturesOf("mpeg1.mpg"));
    EXPECT_EQ(result.Object()["pictures_dropped"], 0);
    EXPECT_EQ(result.Object()["complete"], true);
    EXPECT_TRUE(result.wav == SoundOf("mpeg1.mpg"));
}

TEST_F(OverHttp, ABrokenConnectionIsNotNoticed)
{
    const std::string url =
        Serve("mpeg1.mpg", 1024 * kKiB, [](const PacedRequest& request, PacedReply& reply) {
            if (request.number == 0) {
                reply.cutAfter = 200'000;
            }
        });
    const ViewerResult result = Run({"--play", url});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.Object()["pictures_shown"], PicturesOf("mpeg1.mpg"));
    EXPECT_EQ(result.Object()["complete"], true);
    EXPECT_TRUE(result.wav == SoundOf("mpeg1.mpg"));
}

TEST_F(OverHttp, WhatAKilledServerSentIsShownAndTheRestIsTold)
{
    const std::string url =
        Serve("mpeg1.mpg", 512 * kKiB,
              [](const PacedRequest&, PacedReply& reply) { reply.stallAfter = 200'000; });
    std::thread killer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        server->Kill();
    });
    const ViewerResult result = Run({url});
    killer.join();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("the connection broke"));
    EXPECT_EQ(result.Object()["error"], -36);
    EXPECT_EQ(result.Object()["pictures_shown"], 1);
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

TEST_F(OverHttp, AnAddressThatDoesNotExistIsTold)
{
    const std::string url = Serve("tiny.mpg", 0, [](const PacedRequest&, PacedReply& reply) {
        reply.status = "404 Not Found";
    });
    const ViewerResult result = Run({url, Clip("tiny.mpg")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr(url + ": the server has nothing at this address (HTTP status "
                                            "404) (error -43)"));
    EXPECT_EQ(result.Object(0)["error"], -43);
    EXPECT_EQ(result.Object(1)["error"], 0);
}

TEST_F(OverHttp, AnImageThatDoesNotExistIsToldLikeAMovie)
{
    std::string url = Serve("tiny.mpg", 0, [](const PacedRequest&, PacedReply& reply) {
        reply.status = "404 Not Found";
    });
    url.replace(url.size() - 3, 3, "png");
    const ViewerResult result = Run({url});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("the server has nothing at this address"));
}

TEST_F(OverHttp, ARedirectionLeadsToTheObject)
{
    const std::string url =
        Serve("tiny.mpg", 0, [](const PacedRequest& request, PacedReply& reply) {
            if (request.target != "/there") {
                reply.status = "301 Moved Permanently";
                reply.headers = {"Location: /there"};
            }
        });
    const ViewerResult result = Run({"--play", url});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object()["pictures_shown"], PicturesOf("tiny.mpg"));
}

// The first bytes know best, then the server, then the name.
TEST_F(OverHttp, TheTypeIsTheServersWhereTheFirstBytesSayNothing)
{
    const auto typeOf = [&](const std::string& declared, const std::string& body) {
        Serve("tiny.mpg", 0, [&](const PacedRequest&, PacedReply& reply) {
            reply.headers = {"Content-Type: " + declared};
            reply.body = body.empty() ? reply.body : body;
        });
        const ViewerResult result = Run({server->Url("/x.mpg?y=1")});
        return result.Object()["type"].get<std::string>();
    };
    EXPECT_EQ(typeOf("text/plain", ""), "video/mpeg");
    EXPECT_EQ(typeOf("text/html; charset=utf-8", "<html>"), "text/html");
    EXPECT_EQ(typeOf("application/octet-stream", "nothing known"), "video/mpeg");
}

TEST_F(OverHttp, ObjectsArriveSideBySide)
{
    const std::string url = Serve("silent.mpg", 128 * kKiB);
    const ViewerResult result = Run({"--play", url, url, url, url});
    EXPECT_EQ(result.status, 0) << result.err;
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(result.Object(i)["pictures_shown"], PicturesOf("silent.mpg")) << i;
    }
}

TEST_F(OverHttp, ThePageEndsAtOnceWhileAServerIsSilent)
{
    const std::string url =
        Serve("mpeg1.mpg", 0, [](const PacedRequest&, PacedReply& reply) { reply.stallAfter = 9; });
    const ViewerResult result = viewer.RunAndInterrupt({url}, 1000);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("the end came before there was anything to show"));
    EXPECT_THAT(viewer.LeftBehind(), IsEmpty());
}

} // namespace

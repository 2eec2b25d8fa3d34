// SPDX-License-Identifier: MIT
#include "viewer/web/HttpSource.h"
#include "tests/viewer/PacedServer.h"
#include "tests/viewer/TestFiles.h"
#include "toolbox/Errors.h"
#include "viewer/DeclaredType.h"
#include "viewer/HttpUrl.h"
#include "viewer/TemporaryPlace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <poll.h>

namespace
{

using testing::HasSubstr;
using testing::StartsWith;
using viewer::ByteSource;
using viewer::HttpSource;

constexpr auto kGoodPatience = std::chrono::seconds(30);

// Pumps as the page does, sleeping on the descriptor, until so many bytes are there or the end.
void Fetch(HttpSource& source, SInt32 end)
{
    source.Pump(end);
    while (!source.IsComplete() && source.Received() < end) {
        pollfd look{source.DescriptorToWaitOn(), POLLIN, 0};
        ASSERT_GE(look.fd, 0);
        poll(&look, 1, 2000);
        source.Pump(end);
    }
}

std::string BytesOf(ByteSource& source)
{
    std::string bytes(static_cast<size_t>(source.Received()), '\0');
    source.Read(bytes.data(), 0, source.Received());
    return bytes;
}

// Fetches all that one reply to every request gives.
class OneReply
{
public:
    explicit OneReply(const PacedReply& reply, std::chrono::milliseconds patience = kGoodPatience)
        : server([reply](const PacedRequest&) { return reply; }), source(server.Url(), patience)
    {
        Fetch(source, INT32_MAX);
    }

    PacedServer server;
    HttpSource source;
};

PacedReply Body(const std::string& body)
{
    PacedReply reply;
    reply.body = body;
    return reply;
}

PacedReply Status(const std::string& status)
{
    PacedReply reply = Body("an error page");
    reply.status = status;
    return reply;
}

TEST(HttpSource, FetchesWhatIsThere)
{
    OneReply http(Body(Pattern(100'000)));
    EXPECT_TRUE(http.source.IsComplete());
    EXPECT_EQ(http.source.Failure().error, noErr);
    EXPECT_EQ(BytesOf(http.source), Pattern(100'000));
    EXPECT_EQ(http.source.DescriptorToWaitOn(), -1);
}

TEST(HttpSource, SaysWhoItIs)
{
    const OneReply http(Body("x"));
    EXPECT_THAT(http.server.Requests().at(0).userAgent,
                testing::MatchesRegex("vornview/[0-9]+\\.[0-9]+\\.[0-9]+"));
}

TEST(HttpSource, IsReadNotMuchFurtherThanItIsAsked)
{
    PacedServer server([](const PacedRequest&) { return Body(Pattern(8'000'000)); });
    HttpSource source(server.Url());
    Fetch(source, 1);
    EXPECT_LE(source.Received(), 16384);
    EXPECT_EQ(source.DescriptorToWaitOn(), -1);
    Fetch(source, 70'000);
    EXPECT_GE(source.Received(), 70'000);
    EXPECT_LE(source.Received(), 70'000 + 16384);
    EXPECT_LT(server.BytesSent(), 8'000'000);
    Fetch(source, INT32_MAX);
    EXPECT_EQ(BytesOf(source), Pattern(8'000'000));
}

TEST(HttpSource, TheLengthThatIsToldIsTheEstimate)
{
    PacedServer server([](const PacedRequest&) { return Body(Pattern(50'000)); });
    HttpSource source(server.Url());
    EXPECT_EQ(source.EstimatedBytes(), -1);
    Fetch(source, 1);
    EXPECT_EQ(source.EstimatedBytes(), 50'000);
}

TEST(HttpSource, WithoutALengthTheConnectionsEndIsTheEnd)
{
    PacedReply reply = Body(Pattern(50'000));
    reply.tellsLength = false;
    OneReply http(reply);
    EXPECT_EQ(http.source.Failure().error, noErr);
    EXPECT_EQ(http.source.EstimatedBytes(), 50'000);
}

TEST(HttpSource, TakesABodyInChunks)
{
    PacedReply reply = Body(Pattern(100'000));
    reply.chunked = true;
    OneReply http(reply);
    EXPECT_EQ(http.source.Failure().error, noErr);
    EXPECT_EQ(BytesOf(http.source), Pattern(100'000));
}

TEST(HttpSource, AnEmptyBodyIsComplete)
{
    OneReply http(Body(""));
    EXPECT_TRUE(http.source.IsComplete());
    EXPECT_EQ(http.source.Failure().error, noErr);
    EXPECT_EQ(http.source.Received(), 0);
}

TEST(HttpSource, TellsTheTypeThatIsDeclared)
{
    PacedReply reply = Body("x");
    reply.headers = {"Content-Type: Video/MPEG; codecs=\"mp2\""};
    EXPECT_EQ(OneReply(reply).source.DeclaredType(), "video/mpeg");
}

TEST(HttpSource, FollowsRedirections)
{
    PacedServer server([](const PacedRequest& request) {
        PacedReply reply = request.target == "/there" ? Body("hello") : Status("302 Found");
        reply.headers = {"Location: /there"};
        return reply;
    });
    HttpSource source(server.Url("/here"));
    Fetch(source, INT32_MAX);
    EXPECT_EQ(BytesOf(source), "hello");
}

TEST(HttpSource, DoesNotFollowRedirectionsForEver)
{
    PacedReply reply = Status("302 Found");
    reply.headers = {"Location: /again"};
    const OneReply http(reply);
    EXPECT_EQ(http.source.Failure().error, ioErr);
    EXPECT_THAT(http.source.Failure().text, HasSubstr("redirects without end"));
    EXPECT_LE(http.server.Requests().size(), 12u);
}

TEST(HttpSource, IsNotLedToAFileByARedirection)
{
    const TestFolder folder;
    PacedReply reply = Status("302 Found");
    reply.headers = {"Location: file://" + folder.Write("secret", "secret")};
    const OneReply http(reply);
    EXPECT_EQ(http.source.Failure().error, paramErr);
    EXPECT_EQ(http.source.Received(), 0);
}

TEST(HttpSource, TellsWhatTheServerRefuses)
{
    const auto failureFor = [](const char* status) {
        const OneReply http(Status(status));
        EXPECT_EQ(http.source.Received(), 0) << "an error page is no object";
        return http.source.Failure();
    };
    EXPECT_EQ(failureFor("404 Not Found").error, fnfErr);
    EXPECT_THAT(failureFor("404 Not Found").text, HasSubstr("nothing at this address"));
    EXPECT_THAT(failureFor("404 Not Found").text, HasSubstr("404"));
    EXPECT_EQ(failureFor("403 Forbidden").error, permErr);
    EXPECT_EQ(failureFor("500 Internal Server Error").error, ioErr);
    EXPECT_THAT(failureFor("500 Internal Server Error").text, HasSubstr("500"));
}

TEST(HttpSource, RefusesObjectsOfTwoGiBAndMore)
{
    PacedReply reply = Body("x");
    reply.toldLength = int64_t{1} << 31;
    reply.cutAfter = 1;
    const OneReply http(reply);
    EXPECT_EQ(http.source.Failure().error, paramErr);
    EXPECT_THAT(http.source.Failure().text, HasSubstr("2147483648"));
}

TEST(HttpSource, AServerThatCannotBeReachedIsTold)
{
    std::string url;
    {
        const PacedServer server([](const PacedRequest&) { return PacedReply(); });
        url = server.Url();
    }
    HttpSource source(url);
    Fetch(source, INT32_MAX);
    EXPECT_EQ(source.Failure().error, ioErr);
    EXPECT_THAT(source.Failure().text, StartsWith("the server cannot be reached"));
}

TEST(HttpSource, AServerThatDoesNotExistIsTold)
{
    HttpSource source("http://no-such-host.invalid/clip.mpg");
    Fetch(source, INT32_MAX);
    EXPECT_EQ(source.Failure().error, fnfErr);
    EXPECT_THAT(source.Failure().text, StartsWith("there is no such server"));
}

TEST(HttpSource, AnAddressThatMakesNoSenseIsTold)
{
    HttpSource source("http://127.0.0.1:port/clip.mpg");
    Fetch(source, INT32_MAX);
    EXPECT_EQ(source.Failure().error, paramErr);
    EXPECT_THAT(source.Failure().text, StartsWith("this address cannot be used"));
}

TEST(HttpSource, AConnectionThatIsNotSecureIsTold)
{
    const PacedServer server([](const PacedRequest&) { return Body("plain"); });
    HttpSource source("https://127.0.0.1:" + std::to_string(server.Port()) + "/");
    Fetch(source, INT32_MAX);
    EXPECT_EQ(source.Failure().error, ioErr);
    EXPECT_THAT(source.Failure().text, StartsWith("there is no secure connection"));
    EXPECT_EQ(source.Received(), 0);
}

TEST(HttpSource, ASilentServerIsGivenUp)
{
    PacedReply reply = Body(Pattern(1000));
    reply.stallAfter = 0;
    const OneReply http(reply, std::chrono::seconds(1));
    EXPECT_EQ(http.source.Failure().error, ioErr);
    EXPECT_THAT(http.source.Failure().text, StartsWith("no byte came for 1 second"));
}

TEST(HttpSource, ABrokenConnectionIsMadeAnewForTheRest)
{
    PacedServer server([](const PacedRequest& request) {
        PacedReply reply = WithRanges(request, Pattern(300'000));
        if (request.number == 0) {
            reply.cutAfter = 100'000;
        }
        return reply;
    });
    HttpSource source(server.Url());
    Fetch(source, INT32_MAX);
    EXPECT_EQ(source.Failure().error, noErr) << source.Failure().text;
    EXPECT_EQ(BytesOf(source), Pattern(300'000));
    ASSERT_EQ(server.Requests().size(), 2u);
    EXPECT_GT(server.Requests()[1].from, 0u);
    EXPECT_EQ(server.Requests()[1].ifRange, "\"one\"");
}

TEST(HttpSource, AServerThatFallsSilentIsAskedForTheRest)
{
    PacedServer server([](const PacedRequest& request) {
        PacedReply reply = WithRanges(request, Pattern(300'000));
        if (request.number == 0) {
            reply.stallAfter = 100'000;
        }
        return reply;
    });
    HttpSource source(server.Url(), std::chrono::milliseconds(300));
    Fetch(source, INT32_MAX);
    EXPECT_EQ(BytesOf(source), Pattern(300'000));
}

// What came stays, and the text says how far that is.
class BrokenAfterAStart : public testing::Test
{
protected:
    // The first request is answered by 50 KB of 100, the second one by `second`.
    void Fetch2(const std::function<PacedReply(const PacedRequest&)>& second,
                const std::vector<std::string>& headers = {"ETag: \"one\""})
    {
        server = std::make_unique<PacedServer>([=](const PacedRequest& request) {
            if (request.number > 0) {
                return second(request);
            }
            PacedReply reply = Body(Pattern(100'000));
            reply.headers = headers;
            reply.cutAfter = 50'000;
            return reply;
        });
        source = std::make_unique<HttpSource>(server->Url());
        Fetch(*source, INT32_MAX);
        EXPECT_EQ(BytesOf(*source), Pattern(100'000).substr(0, 50'000));
        EXPECT_THAT(source->Failure().text, HasSubstr("after 50000 of 100000 bytes"));
    }

    std::unique_ptr<PacedServer> server;
    std::unique_ptr<HttpSource> source;
};

TEST_F(BrokenAfterAStart, AServerWithoutRangesIsTold)
{
    Fetch2([](const PacedRequest&) {
        PacedReply reply = Body(Pattern(100'000));
        reply.headers = {"ETag: \"one\""};
        return reply;
    });
    EXPECT_EQ(source->Failure().error, ioErr);
    EXPECT_THAT(source->Failure().text, HasSubstr("does not send the rest alone"));
}

TEST_F(BrokenAfterAStart, AResourceThatHasChangedIsTold)
{
    Fetch2([](const PacedRequest& request) {
        return WithRanges(request, Pattern(100'000), "\"two\"");
    });
    EXPECT_THAT(source->Failure().text, HasSubstr("is something else"));
}

TEST_F(BrokenAfterAStart, AServerThatIgnoresTheConditionIsFoundOutByItsTag)
{
    Fetch2([](const PacedRequest& request) {
        PacedReply reply = WithRanges(request, Pattern(100'000));
        reply.headers[0] = "ETag: \"two\"";
        return reply;
    });
    EXPECT_THAT(source->Failure().text, HasSubstr("is something else"));
}

TEST_F(BrokenAfterAStart, AnotherPartThanTheOneAskedForIsRefused)
{
    Fetch2([](PacedRequest request) {
        *request.from += 1;
        return WithRanges(request, Pattern(100'000));
    });
    EXPECT_THAT(source->Failure().text, HasSubstr("does not send the rest alone"));
}

TEST_F(BrokenAfterAStart, ASecondBreakIsTheEnd)
{
    Fetch2([](const PacedRequest& request) {
        PacedReply reply = WithRanges(request, Pattern(100'000));
        reply.cutAfter = 0;
        return reply;
    });
    EXPECT_EQ(server->Requests().size(), 2u);
    EXPECT_THAT(source->Failure().text, HasSubstr("when asked for the rest"));
}

TEST_F(BrokenAfterAStart, AnErrorForTheRestIsTold)
{
    Fetch2([](const PacedRequest&) { return Status("404 Not Found"); });
    EXPECT_EQ(source->Failure().error, fnfErr);
    EXPECT_THAT(source->Failure().text, HasSubstr("404"));
}

TEST_F(BrokenAfterAStart, TheTimeOfChangeServesWhereThereIsNoTag)
{
    const std::string time = "Sun, 06 Nov 1994 08:49:37 GMT";
    Fetch2([](const PacedRequest&) { return Status("500 Internal Server Error"); },
           {"ETag: W/\"weak\"", "Last-Modified: " + time});
    EXPECT_EQ(server->Requests().at(1).ifRange, time);
}

TEST(HttpSource, WithoutLengthAndVersionABreakIsTheEnd)
{
    PacedReply reply = Body(Pattern(100'000));
    reply.chunked = true;
    reply.cutAfter = 50'000;
    OneReply http(reply);
    EXPECT_EQ(http.server.Requests().size(), 1u);
    EXPECT_EQ(http.source.Failure().error, ioErr);
    EXPECT_THAT(http.source.Failure().text, StartsWith("the connection broke"));
    EXPECT_EQ(BytesOf(http.source), Pattern(50'000));
}

TEST(HttpSource, AKilledServerIsTold)
{
    PacedServer server([](const PacedRequest& request) {
        PacedReply reply = WithRanges(request, Pattern(300'000));
        reply.stallAfter = 100'000;
        return reply;
    });
    HttpSource source(server.Url());
    Fetch(source, 60'000);
    server.Kill();
    Fetch(source, INT32_MAX);
    EXPECT_EQ(source.Failure().error, ioErr);
    EXPECT_THAT(source.Failure().text, HasSubstr("the connection broke"));
    EXPECT_THAT(source.Failure().text, HasSubstr("when asked for the rest, the server cannot be "
                                                 "reached"));
}

TEST(HttpSource, ClosesTheConnectionWhenNobodyWantsMore)
{
    PacedServer server([](const PacedRequest&) { return Body(Pattern(1'000'000)); });
    HttpSource source(server.Url());
    Fetch(source, 1000);
    const SInt32 received = source.Received();
    source.StopReceiving();
    source.Pump(INT32_MAX);
    EXPECT_EQ(source.Received(), received);
    EXPECT_EQ(source.DescriptorToWaitOn(), -1);
    EXPECT_EQ(BytesOf(source), Pattern(1'000'000).substr(0, static_cast<size_t>(received)));
}

TEST(HttpSource, AFullDiskIsTold)
{
    const PacedServer server([](const PacedRequest&) { return Body(Pattern(100'000)); });
    HttpSource source(server.Url());
    const FullDisk disk(40'000);
    Fetch(source, INT32_MAX);
    EXPECT_NE(source.Failure().error, noErr);
    EXPECT_LE(source.Received(), 40'000);
}

TEST(HttpUrl, IsToldFromAPath)
{
    EXPECT_TRUE(viewer::IsHttpUrl("http://host/"));
    EXPECT_TRUE(viewer::IsHttpUrl("HTTPS://host"));
    EXPECT_FALSE(viewer::IsHttpUrl("ftp://host/"));
    EXPECT_FALSE(viewer::IsHttpUrl("http:/clip.mpg"));
    EXPECT_FALSE(viewer::IsHttpUrl("clip.mpg"));
}

TEST(HttpUrl, NamesTheFileAtItsEnd)
{
    EXPECT_EQ(viewer::FileNameInUrl("http://host/a/my%20clip.mpg?x=/y#z"), "my clip.mpg");
    EXPECT_EQ(viewer::FileNameInUrl("http://host/folder/"), "");
    EXPECT_EQ(viewer::FileNameInUrl("http://host"), "");
    EXPECT_EQ(viewer::FileNameInUrl("http://"), "");
    EXPECT_EQ(viewer::FileNameInUrl("http://host?a/b"), "");
}

TEST(HttpUrl, TakesAPercentSignThatEscapesNothingAsItself)
{
    EXPECT_EQ(viewer::FileNameInUrl("http://host/100%.gif"), "100%.gif");
    EXPECT_EQ(viewer::FileNameInUrl("http://host/a%2"), "a%2");
    EXPECT_EQ(viewer::FileNameInUrl("http://host/%zz%2d"), "%zz-");
}

TEST(HttpUrl, NamesNoFileWithCharactersThatWouldSteerATerminal)
{
    EXPECT_EQ(viewer::FileNameInUrl("http://host/a%1b%5b2J.gif"), "");
}

TEST(HttpUrl, NamesAFileBehindAnEscapedSlash)
{
    EXPECT_EQ(viewer::FileNameInUrl("http://host/folder%2Fa.gif"), "a.gif");
}

TEST(DeclaredType, IsReadWithoutParametersAndInSmallLetters)
{
    EXPECT_EQ(viewer::ReadDeclaredType(" Image/PNG ; x=1"), "image/png");
    EXPECT_EQ(viewer::ReadDeclaredType("nonsense"), "");
    EXPECT_EQ(viewer::ReadDeclaredType(""), "");
}

TEST(DeclaredType, SomeBytesAreNoType)
{
    EXPECT_EQ(viewer::ReadDeclaredType("application/octet-stream"), "");
    EXPECT_EQ(viewer::ReadDeclaredType("binary/octet-stream"), "");
}

} // namespace

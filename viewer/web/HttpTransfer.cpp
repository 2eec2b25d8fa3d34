// SPDX-License-Identifier: MIT
#include "viewer/web/HttpTransfer.h"

#include "viewer/ByteSource.h"

#include <cerrno>
#include <cstdio>
#include <sys/epoll.h>
#include <sys/timerfd.h>

namespace viewer
{
namespace
{

constexpr const char* kUserAgent = "vornview/" VORN_VERSION;
constexpr long kMostRedirections = 10;
constexpr long kMillisecondsPerSecond = 1000;
constexpr long kNanosecondsPerMillisecond = 1'000'000;

void StartLibraryOnce()
{
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (started != CURLE_OK) {
        throw SourceFailure{ioErr, curl_easy_strerror(started)};
    }
}

void Watch(int events, int descriptor, UInt32 what)
{
    epoll_event event{};
    event.events = what;
    event.data.fd = descriptor;
    if (epoll_ctl(events, EPOLL_CTL_MOD, descriptor, &event) != 0) {
        epoll_ctl(events, EPOLL_CTL_ADD, descriptor, &event);
    }
}

int CurlBits(UInt32 events)
{
    return ((events & EPOLLIN) != 0 ? CURL_CSELECT_IN : 0) |
           ((events & EPOLLOUT) != 0 ? CURL_CSELECT_OUT : 0) |
           ((events & (EPOLLERR | EPOLLHUP)) != 0 ? CURL_CSELECT_ERR : 0);
}

UInt32 EpollBits(int what)
{
    return ((what & CURL_POLL_IN) != 0 ? UInt32{EPOLLIN} : 0) |
           ((what & CURL_POLL_OUT) != 0 ? UInt32{EPOLLOUT} : 0);
}

// "bytes 100-199/1000" or "bytes 100-199/*"
void ReadContentRange(const std::string& field, HttpAnswer& answer)
{
    long long first = -1;
    long long last = -1;
    long long total = -1;
    if (std::sscanf(field.c_str(), "bytes %lld-%lld/%lld", &first, &last, &total) >= 2) {
        answer.rangeStart = first;
        answer.total = total;
    }
}

} // namespace

HttpTransfer::HttpTransfer(const HttpRequest& request, Taker taker)
    : taker_(std::move(taker)), events_(epoll_create1(EPOLL_CLOEXEC)),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC))
{
    if (!events_.IsOpen() || !timer_.IsOpen()) {
        throw FailureFromErrno(errno);
    }
    StartLibraryOnce();
    multi_.reset(curl_multi_init());
    easy_.reset(curl_easy_init());
    if (multi_ == nullptr || easy_ == nullptr) {
        throw FailureFromErrno(ENOMEM);
    }
    Watch(events_.Get(), timer_.Get(), EPOLLIN);
    Prepare(request);
    PrepareCallbacks();
    curl_multi_add_handle(multi_.get(), easy_.get());
}

HttpTransfer::~HttpTransfer()
{
    curl_multi_remove_handle(multi_.get(), easy_.get());
}

void HttpTransfer::Prepare(const HttpRequest& request)
{
    CURL* const easy = easy_.get();
    curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_USERAGENT, kUserAgent);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, kMostRedirections);
    // One stream to a connection: what nobody takes yet is held back by the connection itself,
    // and not gathered in memory.
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
    // The page's end must not wait for a name server.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, problem_.data());
    if (request.from > 0) {
        curl_easy_setopt(easy, CURLOPT_RANGE, (std::to_string(request.from) + "-").c_str());
    }
    if (!request.ifRange.empty()) {
        headers_.reset(curl_slist_append(nullptr, ("If-Range: " + request.ifRange).c_str()));
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers_.get());
    }
}

void HttpTransfer::PrepareCallbacks()
{
    curl_easy_setopt(easy_.get(), CURLOPT_HEADERFUNCTION, &HttpTransfer::TakeHeader);
    curl_easy_setopt(easy_.get(), CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy_.get(), CURLOPT_WRITEFUNCTION, &HttpTransfer::TakeBody);
    curl_easy_setopt(easy_.get(), CURLOPT_WRITEDATA, this);
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, &HttpTransfer::WatchSocket);
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, &HttpTransfer::SetTimer);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, this);
}

bool HttpTransfer::Work()
{
    std::array<epoll_event, 8> events{};
    const int count = epoll_wait(events_.Get(), events.data(), static_cast<int>(events.size()), 0);
    for (int i = 0; i < count && !ended_; ++i) {
        const epoll_event& event = events[static_cast<size_t>(i)];
        int running = 0;
        if (event.data.fd == timer_.Get()) {
            UInt64 expirations = 0;
            [[maybe_unused]] const ssize_t drained =
                read(timer_.Get(), &expirations, sizeof expirations);
            curl_multi_socket_action(multi_.get(), CURL_SOCKET_TIMEOUT, 0, &running);
        } else {
            curl_multi_socket_action(multi_.get(), event.data.fd, CurlBits(event.events), &running);
        }
        LookForEnd();
    }
    return count > 0;
}

void HttpTransfer::LookForEnd()
{
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
        if (message->msg == CURLMSG_DONE) {
            ended_ = true;
            result_ = message->data.result;
        }
    }
}

void HttpTransfer::GoOn()
{
    curl_easy_pause(easy_.get(), CURLPAUSE_CONT);
    LookForEnd();
}

std::string HttpTransfer::Problem() const
{
    return problem_[0] != '\0' ? problem_.data() : curl_easy_strerror(result_);
}

std::string HttpTransfer::Header(const char* name) const
{
    curl_header* header = nullptr;
    const bool found =
        curl_easy_header(easy_.get(), name, 0, CURLH_HEADER, -1, &header) == CURLHE_OK;
    return found ? header->value : "";
}

HttpAnswer HttpTransfer::Answer() const
{
    HttpAnswer answer;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    curl_off_t length = -1;
    curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    answer.length = length;
    answer.type = Header("Content-Type");
    answer.entityTag = Header("ETag");
    if (answer.entityTag.starts_with("W/")) {
        answer.entityTag.clear(); // a weak one may stand for other bytes
    }
    answer.lastModified = Header("Last-Modified");
    ReadContentRange(Header("Content-Range"), answer);
    return answer;
}

size_t HttpTransfer::TakeHeader(char*, size_t size, size_t count, void* self)
{
    static_cast<HttpTransfer*>(self)->activity_ += static_cast<SInt64>(size * count);
    return size * count;
}

size_t HttpTransfer::TakeBody(char* bytes, size_t size, size_t count, void* self)
{
    auto& transfer = *static_cast<HttpTransfer*>(self);
    switch (transfer.taker_(bytes, size * count)) {
    case Taking::kTaken:
        transfer.activity_ += static_cast<SInt64>(size * count);
        return size * count;
    case Taking::kLater:
        return CURL_WRITEFUNC_PAUSE;
    default:
        return CURL_WRITEFUNC_ERROR;
    }
}

int HttpTransfer::WatchSocket(CURL*, curl_socket_t socket, int what, void* self, void*)
{
    const int events = static_cast<HttpTransfer*>(self)->events_.Get();
    if (what == CURL_POLL_REMOVE) {
        epoll_ctl(events, EPOLL_CTL_DEL, socket, nullptr);
    } else {
        Watch(events, socket, EpollBits(what));
    }
    return 0;
}

// It also goes off every second, for those who measure how long nothing has come.
int HttpTransfer::SetTimer(CURLM*, long milliseconds, void* self)
{
    const bool isNear = milliseconds >= 0 && milliseconds < kMillisecondsPerSecond;
    itimerspec times{};
    times.it_interval.tv_sec = 1;
    times.it_value.tv_sec = isNear ? 0 : 1;
    times.it_value.tv_nsec = isNear ? milliseconds * kNanosecondsPerMillisecond + 1 : 0;
    timerfd_settime(static_cast<HttpTransfer*>(self)->timer_.Get(), 0, &times, nullptr);
    return 0;
}

} // namespace viewer

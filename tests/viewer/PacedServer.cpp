// SPDX-License-Identifier: MIT
#include "tests/viewer/PacedServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <cstdlib>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr auto kPause = std::chrono::milliseconds(5);
constexpr int kPatience = 20; // milliseconds between looks at whether to stop

// What is not yet with the other side is lost, as when a process dies.
void Break(int connection)
{
    const linger atOnce{1, 0};
    setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    shutdown(connection, SHUT_RDWR);
}

std::string ReadHeader(int connection, const std::atomic<bool>& stopping)
{
    std::string header;
    char c = 0;
    // What begins otherwise than with a letter is no HTTP, and has no such end.
    const auto isText = [&] { return header.empty() || (header[0] >= 'A' && header[0] <= 'Z'); };
    while (!stopping && isText() && !header.ends_with("\r\n\r\n")) {
        pollfd look{connection, POLLIN, 0};
        if (poll(&look, 1, kPatience) == 0) {
            continue;
        }
        if (recv(connection, &c, 1, 0) != 1) {
            return "";
        }
        header += c;
    }
    return header;
}

std::string Field(const std::string& header, const std::string& name)
{
    const size_t at = header.find("\r\n" + name + ": ");
    if (at == std::string::npos) {
        return "";
    }
    const size_t start = at + name.size() + 4;
    return header.substr(start, header.find("\r\n", start) - start);
}

PacedRequest Parse(const std::string& header)
{
    PacedRequest request;
    std::istringstream(header.substr(header.find(' ') + 1)) >> request.target;
    request.userAgent = Field(header, "User-Agent");
    request.ifRange = Field(header, "If-Range");
    const std::string range = Field(header, "Range");
    if (range.starts_with("bytes=")) {
        request.from = std::stoul(range.substr(6));
    }
    return request;
}

std::string HeaderOf(const PacedReply& reply)
{
    std::string header = "HTTP/1.1 " + reply.status + "\r\nConnection: close\r\n";
    for (const std::string& line : reply.headers) {
        header += line + "\r\n";
    }
    if (reply.chunked) {
        header += "Transfer-Encoding: chunked\r\n";
    } else if (reply.tellsLength) {
        const auto length = reply.toldLength.value_or(static_cast<int64_t>(reply.body.size()));
        header += "Content-Length: " + std::to_string(length) + "\r\n";
    }
    return header + "\r\n";
}

std::string Chunk(const std::string& bytes)
{
    std::ostringstream text;
    text << std::hex << bytes.size() << "\r\n" << bytes << "\r\n";
    return text.str();
}

} // namespace

PacedServer::PacedServer(Answer answer, uint16_t port)
    : answer_(std::move(answer)), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    setenv("no_proxy", "127.0.0.1", 1);
    const int yes = 1;
    setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, generic, size) != 0 || listen(listener_, 64) != 0 ||
        getsockname(listener_, generic, &size) != 0) {
        throw std::runtime_error("no port for the server");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { Accept(); });
}

PacedServer::~PacedServer()
{
    Kill();
}

void PacedServer::Kill()
{
    if (stopping_.exchange(true)) {
        return;
    }
    acceptor_.join();
    close(listener_);
    {
        const std::lock_guard lock(mutex_);
        for (const int connection : connections_) {
            Break(connection);
        }
    }
    for (std::thread& worker : workers_) {
        worker.join();
    }
}

std::string PacedServer::Url(const std::string& path) const
{
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<PacedRequest> PacedServer::Requests() const
{
    const std::lock_guard lock(mutex_);
    return requests_;
}

void PacedServer::Accept()
{
    while (!stopping_) {
        pollfd look{listener_, POLLIN, 0};
        if (poll(&look, 1, kPatience) <= 0) {
            continue;
        }
        const int connection = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            continue;
        }
        const std::lock_guard lock(mutex_);
        connections_.push_back(connection);
        workers_.emplace_back([this, connection] { Serve(connection); });
    }
}

void PacedServer::Serve(int connection)
{
    const std::string header = ReadHeader(connection, stopping_);
    if (!header.empty()) {
        PacedRequest request = Parse(header);
        {
            const std::lock_guard lock(mutex_);
            request.number = static_cast<int>(requests_.size());
            requests_.push_back(request);
        }
        Send(connection, answer_(request));
    }
    const std::lock_guard lock(mutex_);
    std::erase(connections_, connection);
    close(connection);
}

void PacedServer::Send(int connection, const PacedReply& reply)
{
    // What a fast sender has sent must not lie in the buffers of the system.
    const int small = 16384;
    setsockopt(connection, SOL_SOCKET, SO_SNDBUF, &small, sizeof small);
    const int yes = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    const size_t end = std::min(reply.cutAfter.value_or(reply.body.size()),
                                reply.stallAfter.value_or(reply.body.size()));
    if (!SendAll(connection, HeaderOf(reply)) ||
        !SendBody(connection, reply, reply.body.substr(0, end))) {
        return;
    }
    if (reply.stallAfter) {
        WaitUntilGone(connection);
    } else if (!reply.cutAfter && reply.chunked) {
        SendAll(connection, "0\r\n\r\n");
    }
}

bool PacedServer::SendBody(int connection, const PacedReply& reply, const std::string& body)
{
    const Clock::time_point start = Clock::now();
    size_t sent = 0;
    while (sent < body.size() && !stopping_) {
        size_t due = body.size();
        if (reply.bytesPerSecond > 0) {
            const std::chrono::duration<double> passed = Clock::now() - start;
            due = std::min(due, static_cast<size_t>(passed.count() *
                                                    static_cast<double>(reply.bytesPerSecond)));
        }
        if (due == sent) {
            std::this_thread::sleep_for(kPause);
            continue;
        }
        const std::string piece = body.substr(sent, std::min<size_t>(due - sent, 16384));
        if (!SendAll(connection, reply.chunked ? Chunk(piece) : piece)) {
            return false;
        }
        sent += piece.size();
        sent_ += static_cast<int64_t>(piece.size());
    }
    return !stopping_;
}

void PacedServer::WaitUntilGone(int connection) const
{
    pollfd look{connection, POLLIN | POLLRDHUP, 0};
    while (!stopping_ && poll(&look, 1, kPatience) == 0) {
    }
}

bool PacedServer::SendAll(int connection, const std::string& bytes)
{
    size_t sent = 0;
    while (sent < bytes.size() && !stopping_) {
        pollfd look{connection, POLLOUT, 0};
        if (poll(&look, 1, kPatience) == 0) {
            continue;
        }
        const ssize_t put =
            send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (put < 0) {
            return false;
        }
        sent += static_cast<size_t>(put);
    }
    return sent == bytes.size();
}

PacedReply WithRanges(const PacedRequest& request, const std::string& body, const std::string& tag)
{
    PacedReply reply;
    reply.body = body;
    reply.headers = {"ETag: " + tag, "Accept-Ranges: bytes"};
    const bool isSame = request.ifRange.empty() || request.ifRange == tag;
    if (request.from && isSame) {
        reply.status = "206 Partial Content";
        reply.headers.push_back("Content-Range: bytes " + std::to_string(*request.from) + "-" +
                                std::to_string(body.size() - 1) + "/" +
                                std::to_string(body.size()));
        reply.body = body.substr(std::min(*request.from, body.size()));
    }
    return reply;
}

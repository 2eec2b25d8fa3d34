// SPDX-License-Identifier: MIT
//
// A web server of one page on this machine, that is as slow, as short-spoken and as unreliable as a
// test wants it.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

struct PacedRequest {
    int number = 0; // from 0, in the order in which they came
    std::string target;
    std::string userAgent;
    std::optional<size_t> from; // of a Range
    std::string ifRange;
};

struct PacedReply {
    std::string status = "200 OK";
    std::vector<std::string> headers; // "Name: value"
    std::string body;
    int64_t bytesPerSecond = 0;        // 0: as fast as it goes
    std::optional<int64_t> toldLength; // else the body's
    bool tellsLength = true;
    bool chunked = false;
    std::optional<size_t> cutAfter;   // so many bytes of the body the connection is broken
    std::optional<size_t> stallAfter; // so many bytes of the body nothing comes any more
};

class PacedServer
{
public:
    using Answer = std::function<PacedReply(const PacedRequest&)>;

    // Listens on a port of 127.0.0.1 that it chooses, or on the one that is given.
    explicit PacedServer(Answer answer, uint16_t port = 0);
    // Breaks all connections.
    ~PacedServer();
    PacedServer(const PacedServer&) = delete;
    PacedServer& operator=(const PacedServer&) = delete;

    std::string Url(const std::string& path = "/clip.mpg") const;
    uint16_t Port() const { return port_; }
    // What was asked for so far.
    std::vector<PacedRequest> Requests() const;
    // The bytes of bodies that it got rid of.
    int64_t BytesSent() const { return sent_; }
    // Breaks all connections and takes no more, as if the process was killed.
    void Kill();

private:
    void Accept();
    void Serve(int connection);
    void Send(int connection, const PacedReply& reply);
    bool SendBody(int connection, const PacedReply& reply, const std::string& body);
    void WaitUntilGone(int connection) const;
    bool SendAll(int connection, const std::string& bytes);

    Answer answer_;
    int listener_ = -1;
    uint16_t port_ = 0;
    std::atomic<bool> stopping_ = false;
    std::atomic<int64_t> sent_ = 0;
    mutable std::mutex mutex_;
    std::vector<PacedRequest> requests_;
    std::vector<int> connections_;
    std::list<std::thread> workers_;
    std::thread acceptor_;
};

// A body of which parts may be asked for, by a tag of its version.
PacedReply WithRanges(const PacedRequest& request, const std::string& body,
                      const std::string& tag = "\"one\"");

// SPDX-License-Identifier: MIT
#include "viewer/window/StreamWatch.h"

#include <SDL.h>
#include <algorithm>
#include <stdexcept>
#include <sys/eventfd.h>
#include <unistd.h>

namespace viewer
{
namespace
{

bool AreSame(const std::vector<pollfd>& a, const std::vector<pollfd>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const pollfd& x, const pollfd& y) { return x.fd == y.fd; });
}

} // namespace

StreamWatch::StreamWatch(UInt32 event) : event_(event), messages_(eventfd(0, EFD_CLOEXEC))
{
    if (!messages_.IsOpen()) {
        throw std::runtime_error("the window's streams cannot be watched");
    }
    thread_ = std::thread([this] { WatchOnThread(); });
}

StreamWatch::~StreamWatch()
{
    Send(kEnd);
    thread_.join();
}

void StreamWatch::Watch(std::vector<pollfd> streams)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (AreSame(streams, streams_)) {
            return;
        }
        streams_ = std::move(streams);
    }
    Send(kLookAgain);
}

void StreamWatch::Wake() const
{
    Send(kWake);
}

// The numbers add up until they are read.
void StreamWatch::Send(UInt64 message) const
{
    [[maybe_unused]] const ssize_t written = write(messages_.Get(), &message, sizeof message);
}

void StreamWatch::WatchOnThread()
{
    while (true) {
        std::vector<pollfd> watched = StreamsToWatch();
        if (poll(watched.data(), watched.size(), -1) < 0) {
            continue;
        }
        UInt64 messages = 0;
        if (watched[0].revents != 0 &&
            read(messages_.Get(), &messages, sizeof messages) != sizeof messages) {
            return;
        }
        if (messages >= kEnd) {
            return;
        }
        const bool hasInput = std::any_of(watched.begin() + 1, watched.end(),
                                          [](const pollfd& each) { return each.revents != 0; });
        if (hasInput || messages >= kWake) {
            Tell();
        }
    }
}

std::vector<pollfd> StreamWatch::StreamsToWatch()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<pollfd> watched = {{messages_.Get(), POLLIN, 0}};
    watched.insert(watched.end(), streams_.begin(), streams_.end());
    return watched;
}

// What has something to read would have it at every look: it is watched again when asked for.
void StreamWatch::Tell()
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        streams_.clear();
    }
    SDL_Event event{};
    event.type = event_;
    SDL_PushEvent(&event);
}

} // namespace viewer

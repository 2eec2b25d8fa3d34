// SPDX-License-Identifier: MIT
//
// Wakes the event loop when a stream has something to read.
#pragma once

#include "toolbox/Types.h"
#include "viewer/FileDescriptor.h"

#include <mutex>
#include <poll.h>
#include <thread>
#include <vector>

namespace viewer
{

// A window's event queue cannot wait for descriptors as well. A thread of its own does that, which
// sleeps while there is nothing to be watched and touches nothing but the queue.
class StreamWatch
{
public:
    // `event` is what it puts into the queue. Throws std::runtime_error.
    explicit StreamWatch(UInt32 event);
    ~StreamWatch();
    StreamWatch(const StreamWatch&) = delete;
    StreamWatch& operator=(const StreamWatch&) = delete;

    // From now on these and no others, until one of them has something: then there is one event.
    void Watch(std::vector<pollfd> streams);
    // Puts the event into the queue. May be called from a signal handler.
    void Wake() const;

private:
    enum Message : UInt64 { kLookAgain = 1, kWake = 1 << 16, kEnd = UInt64{1} << 40 };
    void Send(UInt64 message) const;
    void WatchOnThread();
    std::vector<pollfd> StreamsToWatch();
    void Tell();

    UInt32 event_;
    FileDescriptor messages_;
    std::mutex mutex_;
    std::vector<pollfd> streams_;
    std::thread thread_;
};

} // namespace viewer

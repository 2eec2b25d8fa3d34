// SPDX-License-Identifier: MIT
//
// A movie's bytes as its data handler has them, for a reader on a fiber that can wait for those
// that have not arrived.
#pragma once

#include "toolbox/quicktime/DataHandlerClient.h"
#include "toolbox/threads/Fiber.h"

#include <vector>

namespace toolbox
{

class MovieBytes
{
public:
    explicit MovieBytes(DataHandlerClient& handler);
    MovieBytes(const MovieBytes&) = delete;
    MovieBytes& operator=(const MovieBytes&) = delete;

    static constexpr SInt32 kStopped = -1;
    static constexpr SInt32 kFailed = -2;
    // Reads between 1 and `count` bytes at `offset` into `dest`. 0 at the end of the data, kStopped
    // after Stop, kFailed if they cannot be read. Suspends `reader`, whose body must be the caller,
    // while not even one byte is there.
    SInt32 Read(Fiber& reader, void* dest, SInt64 offset, SInt32 count);

    // From now on every read answers kStopped and nothing more is asked of the data handler.
    void Stop() { stopped_ = true; }
    bool IsStopped() const { return stopped_; }
    // Takes back what a suspended reader has asked for, before the reader goes while the data
    // handler stays.
    void Abandon();
    // True while a reader is suspended for bytes.
    bool IsWaiting() const { return waiting_; }
    // True if the bytes that a suspended reader waits for have come.
    bool HasArrived() const { return waiting_ && request_ == Request::kDone; }
    // The exact length once all data is known to be there, else -1.
    SInt32 FinalSize() const { return finalSize_; }

private:
    enum class Request { kNone, kPending, kDone, kCancelled };
    static constexpr SInt32 kBlock = 32768;
    struct Sizes {
        SInt32 available = 0;
        SInt32 whole = 0;
        bool operator==(const Sizes&) const = default;
    };
    Sizes LookAtSizes();
    static void Completed(char* place, RefCon refCon, OSErr err);
    SInt64 BytesThere(SInt64 offset);
    OSErr Ask(SInt64 offset, SInt32 size);
    void WaitForSlice(Fiber& reader);
    void TakeBack();

    DataHandlerClient& handler_;
    std::vector<char> block_; // where the data handler puts bytes, also long after they were asked
    DataHScheduleRecord when_{};
    Request request_ = Request::kNone;
    OSErr outcome_ = 0;
    SInt32 finalSize_ = -1;
    bool stopped_ = false;
    bool waiting_ = false;
};

} // namespace toolbox

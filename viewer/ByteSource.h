// SPDX-License-Identifier: MIT
//
// Where an object's bytes come from.
#pragma once

#include "toolbox/Errors.h"
#include "toolbox/Types.h"
#include "viewer/FileDescriptor.h"

#include <memory>
#include <string>

namespace viewer
{

// Why a source has no (more) bytes, for the report and for the user. Also thrown, by OpenSource.
struct SourceFailure {
    OSErr error = noErr; // 0: it did not fail
    std::string text;
};

// The failure that `errno` tells of.
SourceFailure FailureFromErrno(int number);
// An object may have one byte less than this.
inline constexpr SInt64 kObjectSizeLimit = SInt64{1} << 31;
SourceFailure TooLargeFailure();

// Bytes that come in order and stay readable. Nothing here waits.
class ByteSource
{
public:
    virtual ~ByteSource() = default;

    // Takes in what is there now, as far as `end` and not much further.
    virtual void Pump(SInt32 end) = 0;
    // How many bytes can be read, counted from the start.
    virtual SInt32 Received() const = 0;
    // No more bytes will come, be it for a failure.
    virtual bool IsComplete() const = 0;
    // The expected length, -1 if there is no idea.
    virtual SInt32 EstimatedBytes() const = 0;
    // The Content-Type field that came along with the bytes, parameters and all.
    virtual std::string ContentType() const { return ""; }
    // The MIME type that came along with the bytes, empty if none did so far.
    virtual std::string DeclaredType() const { return ""; }
    // Copies `count` bytes that were received. Answers how many it copied: fewer only after a
    // failure, which is then the source's.
    virtual SInt32 Read(void* buffer, SInt32 offset, SInt32 count) = 0;
    // The last Pump asked for more than there was: the descriptor to wait on for input, else -1.
    virtual int DescriptorToWaitOn() const { return -1; }
    // A file that holds what was received, for as long as it is wanted; not open if there is none.
    virtual FileDescriptor KeptFile() const { return FileDescriptor(); }
    // Nobody wants what is still to come. What was received stays readable.
    virtual void StopReceiving() {}

    const SourceFailure& Failure() const { return failure_; }

protected:
    void Fail(SourceFailure failure) { failure_ = std::move(failure); }

private:
    SourceFailure failure_;
};

// A regular file, a FIFO or another stream by its path, or what is at an http or https URL; "-" is
// standard input. Throws SourceFailure, and PartMissing for a URL.
std::unique_ptr<ByteSource> OpenSource(const std::string& location);
// False for a file that OpenSource would refuse. Nothing is opened: a FIFO's writer would lose its
// reader.
bool MayBeOpened(const std::string& location);

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// One object's bytes as its plug-in gets them: as they arrive, and counted.
#pragma once

#include "viewer/ArrivalPace.h"
#include "viewer/ByteSource.h"
#include "viewer/HostTime.h"

#include <memory>

namespace viewer
{

class ObjectBytes
{
public:
    // `time` outlives the object.
    ObjectBytes(std::unique_ptr<ByteSource> source, ArrivalPace pace, HostTime& time);

    // The host call of that name (src/plugin/VornPluginABI.h). Yields before it hands out bytes.
    // A request of at most kSmallRequest bytes waits for all of them or the end, a larger one
    // until there is anything.
    OSErr GetData(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                  unsigned char* dataComplete);
    static constexpr SInt32 kSmallRequest = 4096;

    // Takes in what has come of the first `end` bytes; nothing waits.
    void Pump(SInt32 end);
    // How many bytes have arrived.
    SInt32 Arrived() const;
    // No more will arrive.
    bool IsAtEnd() const;
    // All there is has arrived and was handed out.
    bool IsComplete() const;
    SInt32 EstimatedBytes() const;
    // See ByteSource.
    std::string ContentType() const { return source_->ContentType(); }
    // The MIME type that came along with the bytes, empty for none.
    std::string DeclaredType() const { return source_->DeclaredType(); }
    // Where the bytes that were handed out end.
    SInt32 HandedOut() const { return handedOut_; }
    // Bytes arrive with the clock, not as fast as they are taken.
    bool IsPaced() const { return pace_.IsLimited(); }
    int DescriptorToWaitOn() const { return source_->DescriptorToWaitOn(); }
    // Somebody is inside GetData and waits for bytes.
    bool IsWaitedFor() const { return waiting_ > 0; }
    // The source ended without having had a byte.
    bool IsEmpty() const;
    // Nobody will ask for what has not arrived.
    void StopReceiving() { source_->StopReceiving(); }
    const SourceFailure& Failure() const { return source_->Failure(); }
    // A file that holds what has arrived, not open if there is none.
    FileDescriptor KeptFile() const { return source_->KeptFile(); }
    // Copies from the start without counting, for a look at the type. Answers how many.
    SInt32 Peek(void* buffer, SInt32 count);

    // From now on every request is answered by the end of the data.
    void Cancel() { cancelled_ = true; }
    // For a second plug-in object after the first was cancelled: all bytes are still there.
    void StartAnew();

private:
    // Waits until the bytes up to `enough` are there, or the end; takes in what has come up to
    // `end` on the way.
    void WaitFor(SInt64 enough, SInt64 end);
    bool HasUpTo(SInt64 enough, SInt64 end);
    void TellLength(SInt32* dataSize, unsigned char* dataComplete) const;

    std::unique_ptr<ByteSource> source_;
    ArrivalPace pace_;
    HostTime& time_;
    SInt32 handedOut_ = 0;
    int waiting_ = 0;
    bool cancelled_ = false;
};

} // namespace viewer

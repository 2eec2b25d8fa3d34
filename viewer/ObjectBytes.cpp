// SPDX-License-Identifier: MIT
#include "viewer/ObjectBytes.h"

#include "src/plugin/VornPluginABI.h"
#include "toolbox/threads/Threads.h"
#include "viewer/BundleCall.h"

#include <algorithm>

namespace viewer
{
namespace
{

// Counts while it exists, also if the thread is unwound out of a yield.
class Counted
{
public:
    explicit Counted(int& count) : count_(count) { ++count_; }
    ~Counted() { --count_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& count_;
};

} // namespace

ObjectBytes::ObjectBytes(std::unique_ptr<ByteSource> source, ArrivalPace pace, HostTime& time)
    : source_(std::move(source)), pace_(pace), time_(time)
{
}

OSErr ObjectBytes::GetData(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                           unsigned char* dataComplete)
{
    const SInt32 wanted = buffer == nullptr ? 0 : std::max(*count, 0);
    const SInt64 end = SInt64{offset} + wanted;
    *count = 0;
    YieldToAnyThread();
    if (wanted > 0) {
        WaitFor(wanted <= kSmallRequest ? end : SInt64{offset} + 1, end);
    }
    if (wanted > 0 && offset >= 0 && offset < Arrived() && !cancelled_) {
        const SInt32 there = std::min(wanted, Arrived() - offset);
        *count = source_->Read(buffer, offset, there);
        handedOut_ = std::max(handedOut_, offset + *count);
    }
    TellLength(dataSize, dataComplete);
    return wanted > 0 && *count == 0 ? OSErr{kDataNotAvailableErr} : OSErr{noErr};
}

void ObjectBytes::WaitFor(SInt64 enough, SInt64 end)
{
    const Counted waiting(waiting_);
    while (!HasUpTo(enough, end) && !IsAtEnd()) {
        if (BundleCall::IsApplicationInside()) {
            time_.LetTimePass();
        }
        YieldToAnyThread();
    }
}

bool ObjectBytes::HasUpTo(SInt64 enough, SInt64 end)
{
    Pump(static_cast<SInt32>(std::min(end, SInt64{INT32_MAX})));
    return Arrived() >= enough;
}

void ObjectBytes::TellLength(SInt32* dataSize, unsigned char* dataComplete) const
{
    *dataSize = Arrived();
    *dataComplete = IsAtEnd() ? 1 : 0;
}

void ObjectBytes::Pump(SInt32 end)
{
    source_->Pump(end);
}

SInt32 ObjectBytes::Arrived() const
{
    return std::min(source_->Received(), pace_.BytesBy(ToolboxMicroseconds()));
}

bool ObjectBytes::IsAtEnd() const
{
    return cancelled_ || (source_->IsComplete() && Arrived() == source_->Received());
}

bool ObjectBytes::IsComplete() const
{
    return source_->IsComplete() && source_->Failure().error == noErr &&
           handedOut_ == source_->Received();
}

bool ObjectBytes::IsEmpty() const
{
    return source_->IsComplete() && source_->Received() == 0 && source_->Failure().error == noErr;
}

SInt32 ObjectBytes::EstimatedBytes() const
{
    return source_->EstimatedBytes();
}

SInt32 ObjectBytes::Peek(void* buffer, SInt32 count)
{
    const SInt32 there = std::min(count, Arrived());
    return there > 0 ? source_->Read(buffer, 0, there) : 0;
}

void ObjectBytes::StartAnew()
{
    cancelled_ = false;
    handedOut_ = 0;
}

} // namespace viewer

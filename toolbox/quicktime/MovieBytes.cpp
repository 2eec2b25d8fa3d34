// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MovieBytes.h"

#include "toolbox/Errors.h"

#include <algorithm>
#include <cstring>

namespace toolbox
{

MovieBytes::MovieBytes(DataHandlerClient& handler) : handler_(handler), block_(kBlock) {}

SInt64 MovieBytes::BytesThere(SInt64 offset)
{
    return (finalSize_ >= 0 ? finalSize_ : handler_.AvailableSize()) - offset;
}

void MovieBytes::Completed(char*, RefCon refCon, OSErr err)
{
    auto* const self = reinterpret_cast<MovieBytes*>(refCon);
    if (self->request_ == Request::kPending) {
        self->request_ = Request::kDone;
        self->outcome_ = err;
    }
}

OSErr MovieBytes::Ask(SInt64 offset, SInt32 size)
{
    request_ = Request::kPending;
    return handler_.ScheduleData(block_.data(), static_cast<SInt32>(offset), size,
                                 reinterpret_cast<RefCon>(this), &when_, Completed);
}

MovieBytes::Sizes MovieBytes::LookAtSizes()
{
    return {handler_.AvailableSize(), handler_.FileSize()};
}

// A request that reaches past the final end is never completed: it is taken back, to be asked
// again, when the sizes tell that loading may be over. Not before: data handlers may keep
// something for each request they ever had.
void MovieBytes::WaitForSlice(Fiber& reader)
{
    const Sizes before = LookAtSizes();
    bool mayBeOver = false;
    waiting_ = true;
    while (request_ == Request::kPending && !stopped_ && !mayBeOver) {
        reader.Suspend();
        if (!stopped_) {
            const Sizes now = LookAtSizes();
            mayBeOver = now != before || now.available == now.whole;
        }
    }
    waiting_ = false;
    if (!stopped_) {
        TakeBack();
    }
}

void MovieBytes::TakeBack()
{
    if (request_ == Request::kPending) {
        request_ = Request::kCancelled;
        handler_.CancelData(block_.data());
    }
}

void MovieBytes::Abandon()
{
    TakeBack();
    Stop();
}

// When nothing is there, one byte is asked for: its completion tells that more has come. Only when
// all data is in does the answer differ: eofErr at the end, or the byte at once because what was
// said to be available is an estimate by then. From that moment the file size is exact.
SInt32 MovieBytes::Read(Fiber& reader, void* dest, SInt64 offset, SInt32 count)
{
    while (!stopped_) {
        const SInt64 there = BytesThere(offset);
        if ((there <= 0 && finalSize_ >= 0) || offset >= INT32_MAX) {
            return 0;
        }
        const auto size =
            static_cast<SInt32>(std::min<SInt64>({std::max<SInt64>(there, 1), count, kBlock}));
        const OSErr err = Ask(offset, size);
        const bool isLoadingOver =
            finalSize_ < 0 &&
            (err == eofErr || (err == noErr && there <= 0 && request_ == Request::kDone));
        if (isLoadingOver) {
            finalSize_ = handler_.FileSize();
        } else if (err != noErr || (request_ == Request::kDone && outcome_ != noErr)) {
            return kFailed;
        } else if (request_ == Request::kPending) {
            WaitForSlice(reader);
        } else {
            std::memcpy(dest, block_.data(), static_cast<size_t>(size));
            return size;
        }
    }
    return kStopped;
}

} // namespace toolbox

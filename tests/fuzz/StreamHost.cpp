// SPDX-License-Identifier: MIT
#include "tests/fuzz/StreamHost.h"

#include "src/plugin/VornPluginABI.h"

#include <algorithm>
#include <array>

namespace
{

constexpr SInt32 kSize = 12000;

} // namespace

void StreamHost::Change(Decisions& decisions)
{
    arrived = static_cast<SInt32>(decisions.Below(kSize + 1));
    hasEnded_ = decisions.Chance();
    toldComplete = hasEnded_ ? 1 : 0;
    toldSize = arrived;
    failure_ = 0;
    if (decisions.Below(8) == 0) {
        toldSize = decisions.AnyLong();
        toldComplete = decisions.Byte();
    }
    if (decisions.Below(8) == 0) {
        failure_ = static_cast<OSErr>(decisions.Between(INT16_MIN, INT16_MAX));
        failsSilently_ = decisions.Chance();
    }
}

StreamHost::Answer StreamHost::AnswerTo(const Request& request) const
{
    // A host that fails copies nothing: what the source had cached stays good.
    if (failure_ != 0 && failure_ != kDataNotAvailableErr)
        return {failure_, {}, !failsSilently_, !failsSilently_};
    Answer answer;
    const SInt64 end = std::min<SInt64>(arrived, SInt64{request.offset} + request.count);
    if (request.hasBuffer && request.offset >= 0 && request.offset < end)
        answer.bytes = BytesAt(request.offset, static_cast<SInt32>(end - request.offset));
    const bool isPastEnd = hasEnded_ && request.count > 0 && answer.bytes.empty();
    answer.result = isPastEnd ? OSErr{kDataNotAvailableErr} : failure_;
    return answer;
}

std::span<const UInt8> StreamHost::BytesAt(SInt32 offset, SInt32 count)
{
    static const auto object = [] {
        std::array<UInt8, kSize> bytes{};
        UInt32 state = 1;
        for (UInt8& byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<UInt8>(state >> 24);
        }
        return bytes;
    }();
    if (offset < 0 || count < 0 || SInt64{offset} + count > kSize)
        return {};
    return std::span(object).subspan(static_cast<size_t>(offset), static_cast<size_t>(count));
}

// SPDX-License-Identifier: MIT
#include "viewer/ArrivalPace.h"

#include <algorithm>

namespace viewer
{

ArrivalPace::ArrivalPace(std::optional<SInt64> bytesPerSecond) : bytesPerSecond_(bytesPerSecond) {}

SInt32 ArrivalPace::BytesBy(SInt64 microseconds) const
{
    constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
    if (!bytesPerSecond_) {
        return INT32_MAX;
    }
    // Seconds and their fraction apart, so that no product leaves 64 bits.
    const SInt64 seconds = std::min(microseconds / kMicrosecondsPerSecond, SInt64{INT32_MAX});
    const SInt64 rest = microseconds % kMicrosecondsPerSecond;
    const SInt64 rate = std::min(*bytesPerSecond_, SInt64{1'000'000'000'000});
    const SInt64 inSeconds = seconds > INT32_MAX / rate ? INT32_MAX : seconds * rate;
    const SInt64 inRest = rate / kMicrosecondsPerSecond * rest +
                          rate % kMicrosecondsPerSecond * rest / kMicrosecondsPerSecond;
    return static_cast<SInt32>(std::min(inSeconds + inRest, SInt64{INT32_MAX}));
}

bool ArrivalPace::IsLimited() const
{
    return bytesPerSecond_.has_value();
}

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "tests/fuzz/SourceModel.h"

#include "src/plugin/VornPluginABI.h"
#include "toolbox/Errors.h"

#include <algorithm>

namespace
{

SInt32 Wrapped(SInt64 sum)
{
    return static_cast<SInt32>(static_cast<UInt32>(sum));
}

Outcome Thrown(OSErr code)
{
    return {.code = code, .isThrown = true};
}

} // namespace

Outcome SourceModel::CreateCache(SInt32 offset, SInt32 size, bool hasMemory)
{
    if (!hasMemory || size < 0)
        return {.code = memFullErr};
    hasCache_ = true;
    cacheStart = offset;
    cacheCapacity = size;
    cacheLength = 0;
    Outcome outcome = Fill(offset);
    outcome.count = 0;
    return outcome.isThrown || outcome.code != kDataNotAvailableErr ? outcome : Outcome{};
}

void SourceModel::RemoveCache()
{
    hasCache_ = false;
    cacheStart = cacheCapacity = cacheLength = 0;
}

Outcome SourceModel::Fetch(bool hasBuffer, SInt32 offset, SInt32 count, bool mustHaveAll)
{
    requests.push_back({hasBuffer, offset, count});
    const StreamHost::Answer answer = host_->AnswerTo(requests.back());
    if (answer.tellsSize) {
        dataSize = host_->toldSize;
        dataComplete = host_->toldComplete;
    }
    Outcome outcome = {.code = answer.result, .count = count};
    outcome.copied = static_cast<SInt32>(answer.bytes.size());
    if (answer.tellsCount)
        outcome.count = outcome.copied;
    outcome.isThrown = answer.result != 0 && (answer.result != kDataNotAvailableErr || mustHaveAll);
    return outcome;
}

Outcome SourceModel::Fill(SInt32 offset)
{
    const Outcome outcome = Fetch(hasCache_, offset, hasCache_ ? cacheCapacity : 0, false);
    if (!outcome.isThrown) {
        cacheStart = offset;
        cacheLength = outcome.count;
    }
    return outcome;
}

bool SourceModel::IsCached(SInt64 from, SInt64 to) const
{
    const SInt64 end = SInt64{cacheStart} + cacheLength;
    return from >= cacheStart && from < end && to >= cacheStart && to <= end;
}

Outcome SourceModel::GetBytes(SInt32 offset, SInt32 count)
{
    if (IsCached(offset, SInt64{offset} + count))
        return {.count = count, .copied = std::max(count, 0)};
    if (count > cacheCapacity)
        return Fetch(true, offset, count, false);
    Outcome outcome = Fill(offset);
    outcome.copied = 0;
    outcome.count = count;
    if (outcome.isThrown)
        return outcome;
    // The cache begins at the offset now.
    if (dataComplete != 0)
        outcome.count = std::min(count, cacheLength);
    if (IsCached(offset, SInt64{offset} + outcome.count)) {
        outcome.code = 0;
        outcome.copied = std::max(outcome.count, 0);
    }
    return outcome;
}

Outcome SourceModel::GetAddress(SInt32 offset, SInt32 length)
{
    if (length > cacheCapacity || !hasCache_)
        return {.isNull = true};
    const auto isHeld = [&] {
        return offset >= cacheStart && SInt64{offset} + length <= SInt64{cacheStart} + cacheLength;
    };
    if (!isHeld()) {
        const Outcome outcome = Fill(offset);
        if (outcome.isThrown)
            return Thrown(outcome.code);
    }
    if (isHeld())
        return {};
    lastError = kDataOutOfRangeErr;
    return Thrown(kDataOutOfRangeErr);
}

Outcome SourceModel::ReadBlock(SInt32 count, bool advance)
{
    const Outcome outcome = GetBytes(readOffset, count);
    if (outcome.isThrown)
        return outcome;
    lastError = outcome.code;
    if (advance)
        Skip(outcome.count);
    return outcome;
}

Outcome SourceModel::ReadNumber(SInt32 width, bool advance)
{
    const Outcome outcome = GetAddress(readOffset, width);
    if (outcome.isNull)
        return Thrown(kDataOutOfRangeErr);
    if (!outcome.isThrown && advance)
        Skip(width);
    return outcome;
}

std::optional<Outcome> SourceModel::SkipTo(UInt8 target, bool advance)
{
    constexpr SInt32 kMostSteps = 500;
    const SInt32 most = std::min(kMostSteps, searchSteps);
    const SInt32 start = readOffset;
    for (SInt32 steps = 1; steps <= most; ++steps) {
        --searchSteps;
        const SInt32 place = readOffset;
        const Outcome outcome = ReadBlock(1, true);
        if (outcome.isThrown)
            return Thrown(outcome.code);
        if (outcome.copied == 1 && StreamHost::BytesAt(place, 1)[0] == target) {
            readOffset = advance ? Wrapped(SInt64{readOffset} - 1) : start;
            return Outcome{.count = steps - 1};
        }
    }
    return std::nullopt;
}

Outcome SourceModel::SkipToOffsetFromEnd(SInt32 n)
{
    const Outcome outcome = Fetch(false, Wrapped(-SInt64{n}), 0, true);
    if (outcome.isThrown)
        return Thrown(outcome.code);
    lastError = outcome.code;
    readOffset = Wrapped(SInt64{dataSize} - n);
    return {};
}

void SourceModel::Skip(SInt32 n)
{
    readOffset = Wrapped(SInt64{readOffset} + n);
}

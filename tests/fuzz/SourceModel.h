// SPDX-License-Identifier: MIT
//
// What the stream data source must do, with a cache of bytes that are not even kept: the object's
// bytes are known.
#pragma once

#include "tests/fuzz/StreamHost.h"

#include <optional>

// What an operation answered or threw.
struct Outcome {
    OSErr code = 0;
    bool isThrown = false;
    bool isNull = false; // an address
    SInt32 count = 0;
    // The model's alone: how many bytes were copied. Where the host had fewer than it should, a
    // read through the cache succeeds with none.
    SInt32 copied = 0;
};

class SourceModel
{
public:
    explicit SourceModel(const StreamHost& ownHost) : host_(&ownHost) {}

    Outcome CreateCache(SInt32 offset, SInt32 size, bool hasMemory);
    void RemoveCache();
    Outcome Fetch(bool hasBuffer, SInt32 offset, SInt32 count, bool mustHaveAll);
    Outcome GetBytes(SInt32 offset, SInt32 count);
    Outcome GetAddress(SInt32 offset, SInt32 length);
    Outcome ReadBlock(SInt32 count, bool advance);
    Outcome ReadNumber(SInt32 width, bool advance);
    // None if it would go on for more than some hundred bytes, or than searches may take in all.
    std::optional<Outcome> SkipTo(UInt8 target, bool advance);
    Outcome SkipToOffsetFromEnd(SInt32 n);
    void Skip(SInt32 n);

    SInt32 readOffset = 0;
    SInt32 dataSize = 0;
    OSErr lastError = 0;
    UInt8 dataComplete = 0;
    SInt32 cacheStart = 0;
    SInt32 cacheCapacity = 0;
    SInt32 cacheLength = 0;
    std::vector<StreamHost::Request> requests;
    SInt32 searchSteps = 2000; // that are left

private:
    Outcome Fill(SInt32 offset);
    bool IsCached(SInt64 from, SInt64 to) const;

    const StreamHost* host_;
    bool hasCache_ = false;
};

// SPDX-License-Identifier: MIT
#include "tests/support/ArrivalHost.h"

#include "toolbox/threads/Threads.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace test
{
namespace
{

ArrivalHost* gHost = nullptr;

} // namespace

ArrivalHost::ArrivalHost()
{
    gHost = this;
    SetupPluginHostCalls(&Calls());
}

ArrivalHost::~ArrivalHost()
{
    gHost = nullptr;
}

const VornPluginHostCalls& ArrivalHost::Calls() const
{
    static const VornPluginHostCalls calls = {GotRect, RenderingDone, DecodedChunk, GetData,
                                              GetEstimatedObjectBytes};
    return calls;
}

void ArrivalHost::FillObject(SInt32 size)
{
    object.resize(static_cast<size_t>(size));
    UInt32 state = 1;
    for (UInt8& byte : object) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<UInt8>(state >> 24);
    }
}

OSErr ArrivalHost::GotRect(VornPlugin*, const Rect* rect)
{
    std::ostringstream text;
    text << "gotRect " << rect->top << ',' << rect->left << ',' << rect->bottom << ','
         << rect->right;
    gHost->told.push_back(text.str());
    return 0;
}

OSErr ArrivalHost::RenderingDone(VornPlugin*, OSErr err)
{
    gHost->told.push_back("renderingDone " + std::to_string(err));
    return 0;
}

OSErr ArrivalHost::DecodedChunk(VornPlugin*, SInt16 first, SInt16 end)
{
    gHost->told.push_back("decodedChunk " + std::to_string(first) + ',' + std::to_string(end));
    return 0;
}

OSErr ArrivalHost::GetData(VornPlugin*, void* buffer, SInt32 offset, SInt32* count,
                           SInt32* dataSize, unsigned char* dataComplete)
{
    return gHost->HandOut(buffer, offset, count, dataSize, dataComplete);
}

OSErr ArrivalHost::GetEstimatedObjectBytes(VornPlugin*, SInt32* bytes)
{
    ++gHost->estimateRequests;
    *bytes = gHost->estimate;
    return 0;
}

OSErr ArrivalHost::HandOut(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                           unsigned char* dataComplete)
{
    requests.push_back({offset, *count, buffer != nullptr});
    if (yields) {
        YieldToAnyThread();
    }
    if (onGetData) {
        onGetData();
    }
    if (failure != 0) {
        return failure;
    }
    if (!arrivals.empty()) {
        arrived += arrivals.front();
        arrivals.pop_front();
    }
    arrived = std::min(arrived, static_cast<SInt32>(object.size()));
    *dataSize = arrived;
    *dataComplete = HasEnded();
    const bool nothingLeft = offset >= arrived;
    *count = nothingLeft ? 0 : std::min(*count, arrived - offset);
    if (*count > 0) {
        std::memcpy(buffer, object.data() + offset, static_cast<size_t>(*count));
    }
    const bool tookTheLast = reportsEndWithLastBytes && offset + *count == arrived;
    return HasEnded() && (nothingLeft || tookTheLast) ? OSErr{kDataNotAvailableErr} : OSErr{0};
}

} // namespace test

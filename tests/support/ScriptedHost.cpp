// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedHost.h"

#include "toolbox/Errors.h"

#include <algorithm>
#include <cstring>

namespace test
{

ScriptedHost* ScriptedHost::current = nullptr;

ScriptedHost::ScriptedHost(std::string wholeObject, std::vector<Arrival> arrivals)
    : whole(std::move(wholeObject)), plan(std::move(arrivals))
{
    if (plan.empty())
        plan.push_back({static_cast<SInt32>(whole.size()), true});
    current = this;
}

ScriptedHost::~ScriptedHost()
{
    if (current == this)
        current = nullptr;
}

VornPluginHostCalls ScriptedHost::Calls()
{
    return {GotRect, RenderingDone, DecodedChunk, GetData, GetEstimatedObjectBytes};
}

void ScriptedHost::Install() const
{
    const VornPluginHostCalls table = Calls();
    SetupPluginHostCalls(&table);
}

ScriptedHost& ScriptedHost::Note(const char* slot, VornPlugin* object)
{
    current->calls.emplace_back(slot);
    current->objects.push_back(object);
    return *current;
}

OSErr ScriptedHost::GotRect(VornPlugin* object, const Rect* displayRect)
{
    Note("gotRect", object).gotRects.push_back(*displayRect);
    return noErr;
}

OSErr ScriptedHost::RenderingDone(VornPlugin* object, OSErr finalError)
{
    Note("renderingDone", object).renderingDone.push_back(finalError);
    return noErr;
}

OSErr ScriptedHost::DecodedChunk(VornPlugin* object, SInt16 first, SInt16 end)
{
    Note("decodedChunk", object).decodedChunks.emplace_back(first, end);
    return noErr;
}

OSErr ScriptedHost::GetData(VornPlugin* object, void* buffer, SInt32 offset, SInt32* count,
                            SInt32* dataSize, unsigned char* dataComplete)
{
    ScriptedHost& host = Note("getData", object);
    host.dataRequests.push_back({buffer == nullptr, offset, *count});
    const Arrival arrival = host.NextArrival();
    *dataSize = arrival.upTo;
    *dataComplete = arrival.complete;
    return host.Deliver(buffer, offset, count, arrival);
}

OSErr ScriptedHost::GetEstimatedObjectBytes(VornPlugin* object, SInt32* outBytes)
{
    *outBytes = Note("getEstimatedObjectBytes", object).estimate;
    return noErr;
}

Arrival ScriptedHost::NextArrival()
{
    const Arrival arrival = plan[nextStep];
    nextStep = std::min(nextStep + 1, plan.size() - 1);
    return arrival;
}

OSErr ScriptedHost::Deliver(void* buffer, SInt32 offset, SInt32* count,
                            const Arrival& arrival) const
{
    const SInt32 requested = *count;
    if (requested > 0) {
        *count = offset < 0 ? 0 : std::clamp<SInt32>(arrival.upTo - offset, 0, requested);
        if (*count > 0)
            std::memcpy(buffer, whole.data() + offset, static_cast<std::size_t>(*count));
    }
    if (arrival.error != noErr)
        return arrival.error;
    return requested > 0 && *count == 0 ? OSErr{kDataNotAvailableErr} : OSErr{noErr};
}

} // namespace test

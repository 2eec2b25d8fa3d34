// SPDX-License-Identifier: MIT
#pragma once

#include "src/plugin/VornPluginABI.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace test
{

// A host that hands out an object's bytes by plan and keeps what it is told. One at a time; it
// installs its calls in the bundle when made.
class ArrivalHost
{
public:
    ArrivalHost();
    ~ArrivalHost();
    ArrivalHost(const ArrivalHost&) = delete;
    ArrivalHost& operator=(const ArrivalHost&) = delete;

    const VornPluginHostCalls& Calls() const;
    // Bytes that differ from place to place, `size` of them, become the object.
    void FillObject(SInt32 size);

    struct Request {
        SInt32 offset;
        SInt32 count;
        bool hasBuffer;
    };

    std::vector<UInt8> object;
    // How many more bytes are there at each call of getData from now on (0 for a call that finds
    // nothing new). When it is used up, nothing more comes: the data have ended if `ends`.
    std::deque<SInt32> arrivals;
    bool ends = true;
    // The call that hands out the last byte reports the end along with it.
    bool reportsEndWithLastBytes = false;
    // Yields at every call of getData, as hosts do.
    bool yields = false;
    // Answered by getData in place of everything else when not 0.
    OSErr failure = 0;
    SInt32 estimate = -1;
    // Runs inside every getData, before anything arrives.
    std::function<void()> onGetData;

    SInt32 arrived = 0;
    std::vector<Request> requests;
    std::vector<std::string> told; // "gotRect t,l,b,r", "renderingDone err", "decodedChunk f,e"
    int estimateRequests = 0;

private:
    static OSErr GotRect(VornPlugin*, const Rect* rect);
    static OSErr RenderingDone(VornPlugin*, OSErr err);
    static OSErr DecodedChunk(VornPlugin*, SInt16 first, SInt16 end);
    static OSErr GetData(VornPlugin*, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                         unsigned char* dataComplete);
    static OSErr GetEstimatedObjectBytes(VornPlugin*, SInt32* bytes);
    OSErr HandOut(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                  unsigned char* dataComplete);
    bool HasEnded() const { return ends && arrivals.empty(); }
};

} // namespace test

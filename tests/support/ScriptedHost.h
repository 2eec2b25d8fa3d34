// SPDX-License-Identifier: MIT
//
// A host whose bytes arrive by a plan and which writes down every call it gets.
#pragma once

#include "src/plugin/VornPluginABI.h"

#include <string>
#include <utility>
#include <vector>

namespace test
{

// What has arrived when getData is asked.
struct Arrival {
    SInt32 upTo;
    bool complete;
    OSErr error = 0; // answered after the copying, if not 0
};

// One at a time: the callbacks know the object but not the host, and speak to the last one made.
class ScriptedHost
{
public:
    // `whole` is the object. Each getData takes the next step of `plan`, the last one again and
    // again; without a plan all bytes are there from the start.
    explicit ScriptedHost(std::string whole = {}, std::vector<Arrival> plan = {});
    ~ScriptedHost();
    ScriptedHost(const ScriptedHost&) = delete;
    ScriptedHost& operator=(const ScriptedHost&) = delete;

    // The five callbacks.
    static VornPluginHostCalls Calls();
    // Installs them in the code under test.
    void Install() const;

    struct DataRequest {
        bool nullBuffer;
        SInt32 offset;
        SInt32 count;
    };

    SInt32 estimate = -1; // what getEstimatedObjectBytes writes

    std::vector<std::string> calls;                       // names of the slots, in order
    std::vector<VornPlugin*> objects;                     // who called, in the same order
    std::vector<Rect> gotRects;                           // slot 0
    std::vector<OSErr> renderingDone;                     // slot 1
    std::vector<std::pair<SInt16, SInt16>> decodedChunks; // slot 2
    std::vector<DataRequest> dataRequests;                // slot 3

private:
    static ScriptedHost& Note(const char* slot, VornPlugin* object);
    static OSErr GotRect(VornPlugin* object, const Rect* displayRect);
    static OSErr RenderingDone(VornPlugin* object, OSErr finalError);
    static OSErr DecodedChunk(VornPlugin* object, SInt16 first, SInt16 end);
    static OSErr GetData(VornPlugin* object, void* buffer, SInt32 offset, SInt32* count,
                         SInt32* dataSize, unsigned char* dataComplete);
    static OSErr GetEstimatedObjectBytes(VornPlugin* object, SInt32* outBytes);
    Arrival NextArrival();
    OSErr Deliver(void* buffer, SInt32 offset, SInt32* count, const Arrival& arrival) const;

    std::string whole;
    std::vector<Arrival> plan;
    std::size_t nextStep = 0;
    static ScriptedHost* current;
};

} // namespace test

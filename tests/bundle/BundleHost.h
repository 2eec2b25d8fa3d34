// SPDX-License-Identifier: MIT
//
// A host that drives objects of the built movie bundle through its exported names only, with bytes
// that arrive as the test says.
#pragma once

#include "tests/support/BuiltBundle.h"
#include "toolbox/quickdraw/QuickDraw.h"
#include "toolbox/quicktime/Movies.h"
#include "toolbox/threads/Threads.h"

#include <map>
#include <memory>
#include <string>

// One object, from its making to its end.
class HostedObject
{
public:
    HostedObject(const test::BuiltBundle& bundle, std::string bytes, CGrafPtr port);
    // Ends as a host ends: no more bytes, decoding returns, the object is freed. Yields meanwhile.
    // That is safe in a destructor on the application thread alone, where every test runs: nobody
    // can dispose of that thread, so the yield always returns, and nothing thrown on another
    // thread passes through here.
    ~HostedObject();
    HostedObject(const HostedObject&) = delete;
    HostedObject& operator=(const HostedObject&) = delete;

    // Begins decoding on a thread of its own.
    void Decode();
    // The host's part of a round: idle, and display when the size has become known.
    void Idle();
    void ClickPlay();
    // Stops decoding in the middle by disposing of its thread. True if that left the spool file
    // open for writing: only the end of spooling closes it.
    bool DisposeDecodingThread();
    // No more bytes come: decoding ends with what there is.
    void Cancel() { cancelled = true; }

    bool IsDecoding() const { return decoding != kNoThreadID; }
    MovieStatistics Statistics();

    size_t arrived = 0; // how many bytes are there
    size_t handedOut = 0;
    bool cancelled = false;
    bool isSpooling = false; // a chunk was asked for
    OSErr decodeResult = 1;
    OSErr idleResult = 0;

private:
    static const VornPluginHostCalls& Calls();
    static HostedObject& Of(VornPlugin* object);
    OSErr GetData(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                  unsigned char* dataComplete);

    const test::BuiltBundle& bundle_;
    std::string bytes_;
    CGrafPtr port_;
    VornPlugin* object_ = nullptr;
    ThreadID decoding = kNoThreadID;
    Rect area_ = {0, 0, 400, 400};
    bool hasNewSize_ = false;
};

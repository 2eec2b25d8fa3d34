// SPDX-License-Identifier: MIT
#pragma once

#include "tests/fuzz/Decisions.h"
#include "tests/support/BuiltBundle.h"
#include "toolbox/quickdraw/QuickDraw.h"
#include "toolbox/threads/Threads.h"

#include <map>
#include <memory>
#include <vector>

// An object of any bundle and the host's part of its life.
class OddObject
{
public:
    // Its bytes end in a failure now and then if it may: a movie's spool file stays open after one.
    OddObject(const test::BuiltBundle& ownBundle, std::vector<UInt8> bytes, bool mayFail,
              Decisions& decisions);
    // No more bytes, decoding returns, the object is freed.
    ~OddObject();
    OddObject(const OddObject&) = delete;
    OddObject& operator=(const OddObject&) = delete;

    const test::BuiltBundle& Bundle() const { return bundle_; }
    VornPlugin* Get() const { return object_; }
    void Arrive(size_t count) { arrived_ += count; }
    // Begins decoding on a thread of its own, once.
    void Decode();

    // Its slots, which keep to what a host must do, and are odd where they may be.
    static const VornPluginHostCalls& Calls();

private:
    static OddObject* Of(VornPlugin* object);
    OSErr GetData(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                  unsigned char* dataComplete);
    void WaitFor(size_t offset, SInt32 count);
    bool HasEnded() const { return isCancelled_ || arrived_ >= bytes_.size(); }
    OSErr OddResult();

    const test::BuiltBundle& bundle_;
    std::vector<UInt8> bytes_;
    bool mayFail_;
    Decisions& decisions_;
    VornPlugin* object_ = nullptr;
    ThreadID thread_ = kNoThreadID;
    size_t arrived_ = 0;
    int requests_ = 0;
    bool hasStarted_ = false;
    bool isCancelled_ = false;
};

// A code that the documentation has: 0, one of the platform or one of the plug-in's own.
void RequireDocumented(OSErr result);

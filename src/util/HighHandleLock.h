// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/memory/Memory.h"

// Locks a handle high for the length of a scope; the state it had comes back on every way out.
class HighHandleLock
{
public:
    explicit HighHandleLock(Handle handle) : handle_(handle), state_(HGetState(handle))
    {
        HLockHi(handle_);
    }
    ~HighHandleLock() { HSetState(handle_, state_); }
    HighHandleLock(const HighHandleLock&) = delete;
    HighHandleLock& operator=(const HighHandleLock&) = delete;

private:
    const Handle handle_;
    const SInt8 state_;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <cstring>

// While it exists the toolbox's operations of that name fail, all of them without a name.
class FailingOperations
{
public:
    explicit FailingOperations(OSErr error, const char* name = nullptr) : error_(error), name_(name)
    {
        SetToolboxObserver(Observe, this);
    }
    ~FailingOperations() { SetToolboxObserver(nullptr, nullptr); }
    FailingOperations(const FailingOperations&) = delete;
    FailingOperations& operator=(const FailingOperations&) = delete;

private:
    static OSErr Observe(const char* operation, void* refCon)
    {
        const auto& self = *static_cast<const FailingOperations*>(refCon);
        const bool fails = self.name_ == nullptr || std::strcmp(operation, self.name_) == 0;
        return fails ? self.error_ : OSErr{noErr};
    }

    OSErr error_;
    const char* name_;
};

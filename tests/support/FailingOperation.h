// SPDX-License-Identifier: MIT
//
// Makes a toolbox operation fail for the length of a scope.
#pragma once

#include "toolbox/probe/Probe.h"

#include <string>
#include <utility>

namespace test
{

class FailingOperation
{
public:
    // `operation` by the platform's name, for example "NewHandle". The first `spared` calls work.
    FailingOperation(std::string operation, OSErr error, int spared = 0)
        : name(std::move(operation)), code(error), left(spared)
    {
        SetToolboxObserver(Observe, this);
    }
    ~FailingOperation() { SetToolboxObserver(nullptr, nullptr); }
    FailingOperation(const FailingOperation&) = delete;
    FailingOperation& operator=(const FailingOperation&) = delete;

private:
    static OSErr Observe(const char* operation, void* refCon)
    {
        auto* self = static_cast<FailingOperation*>(refCon);
        if (self->name != operation || self->left-- > 0)
            return 0;
        return self->code;
    }

    std::string name;
    OSErr code;
    int left;
};

} // namespace test

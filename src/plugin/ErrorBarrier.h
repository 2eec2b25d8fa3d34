// SPDX-License-Identifier: MIT
//
// The one place where exceptions become result codes.
#pragma once

#include "toolbox/Errors.h"
#include "toolbox/Types.h"

#include <utility>

// Runs `body`: 0 if it returns, the OSErr it throws, paramErr for any other exception. What body
// was to write stays as it was if it throws before writing it, which is all that an operation
// without an error result needs.
template <class Body>
OSErr CatchErrors(Body&& body)
{
    try {
        std::forward<Body>(body)();
        return noErr;
    } catch (OSErr err) {
        return err;
    } catch (...) {
        return paramErr;
    }
}

// SPDX-License-Identifier: MIT
//
// What a piece of code throws.
#pragma once

#include "toolbox/Types.h"

namespace test
{

// The OSErr that `body` throws, 0 if it throws nothing. Any other exception passes on.
template <class Body>
OSErr ErrorOf(Body&& body)
{
    try {
        body();
    } catch (OSErr err) {
        return err;
    }
    return 0;
}

} // namespace test

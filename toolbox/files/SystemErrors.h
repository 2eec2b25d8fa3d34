// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

namespace toolbox
{

// The platform's code for an errno value other than 0; ioErr for whatever has no code of its own.
OSErr ErrorFromSystem(int errorNumber);

} // namespace toolbox

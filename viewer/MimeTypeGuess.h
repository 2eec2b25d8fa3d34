// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <string>

namespace viewer
{

// The MIME type that an object's first bytes tell of, empty if they tell of none that is known
// here. A few hundred bytes are enough.
std::string GuessMimeType(const UInt8* bytes, size_t count);

} // namespace viewer

// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/foundation/Objects.h"

#include <string>

namespace toolbox
{

// The property list in a file, XML or binary; null if there is none or it is malformed. Dictionary,
// array and string keep their kinds, everything else becomes a plain object. Throws std::bad_alloc.
Owned ReadPropertyList(const std::string& path);

} // namespace toolbox

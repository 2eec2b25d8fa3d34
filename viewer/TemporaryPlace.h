// SPDX-License-Identifier: MIT
//
// The folder for temporary files: $TMPDIR, /tmp without it. Streams are kept there, and bundles
// keep their movies there.
#pragma once

#include <string>

namespace viewer
{

std::string TemporaryPlace();
// Throws std::runtime_error with a text for the user if nothing can be kept there, so that no
// object is blamed for it.
void RequireTemporaryPlace();

} // namespace viewer

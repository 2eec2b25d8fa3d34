// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace viewer
{

// Where an object that was named on the command line is: a path, an http or https URL, or "-". A
// file URL, as desktops hand them over, becomes its path (RFC 8089; %XX is decoded). Throws
// UsageError for what can be none of these.
std::string LocateObject(const std::string& name);

} // namespace viewer

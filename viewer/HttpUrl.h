// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace viewer
{

// Starts with http:// or https://.
bool IsHttpUrl(const std::string& location);
// The last part of the URL's path, decoded; empty if there is none, or none to be shown to a user.
std::string FileNameInUrl(const std::string& url);

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// Says what happened when a cooperative stack runs over: the process ends then as for any access to
// memory that is not there, and nobody could tell the two apart.
#pragma once

namespace toolbox
{

// From the first call on a line on the standard error stream tells of it. What was done about
// SIGSEGV before is done then and in all other cases.
void WatchForStackOverflow();

} // namespace toolbox

// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

namespace sweep
{

// How many there are of what must not be left behind, by name: the toolbox's objects by their
// ledger, and what the system knows of: "descriptors" and "spool files".
using Census = std::map<std::string, int>;

Census TakeCensus();
// Deletes what was left, so that it does not stand in the way of later names.
void RemoveSpoolFiles();
// What `after` has more of than `before`; less counts as a negative number.
Census Difference(const Census& before, const Census& after);

} // namespace sweep

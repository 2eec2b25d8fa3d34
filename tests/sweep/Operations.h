// SPDX-License-Identifier: MIT
//
// What each operation of the toolbox can fail with.
#pragma once

#include "toolbox/Types.h"

#include <map>
#include <string>
#include <vector>

namespace sweep
{

// What an operation that tells only that it failed (by a null, a false or a zero) is made to fail
// with: a code that nothing else gives.
constexpr OSErr kUntold = -29999;

// The operations that can fail, with every code that they can give.
const std::map<std::string, std::vector<OSErr>>& FailableOperations();
// Those that cannot, with the reason.
const std::map<std::string, std::string>& InfallibleOperations();

} // namespace sweep

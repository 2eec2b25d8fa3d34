// SPDX-License-Identifier: MIT
#pragma once

#include "tests/mutation/Mutants.h"

// Those of single words, numbers and operators, and of conditions; `code` is the source as
// CodeOnly gives it. Added behind what is there, in no particular order.
void AddTokenMutants(const std::string& source, const std::string& code,
                     std::vector<Mutant>& mutants);

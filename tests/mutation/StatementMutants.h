// SPDX-License-Identifier: MIT
#pragma once

#include "tests/mutation/Mutants.h"

// Calls, assignments, deletions and scope guards left out, and such neighbours exchanged of which
// one is a call; `code` is the source as CodeOnly gives it. Added behind what is there.
void AddStatementMutants(const std::string& source, const std::string& code,
                         std::vector<Mutant>& mutants);

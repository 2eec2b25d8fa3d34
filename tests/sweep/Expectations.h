// SPDX-License-Identifier: MIT
//
// What may come out of each scenario when an operation fails in it.
#pragma once

#include "tests/sweep/Scenario.h"

#include <string>
#include <vector>

namespace sweep
{

// What a failure may leave behind, and why.
struct Remainder {
    std::string kind; // of the census
    int perFailure;   // at most as many for each time that the operation failed
    std::string reason;
};

// One operation's failures in one scenario. The outcomes are steps with what comes out of them
// otherwise than without a failure: "decode=E,-108 shown=none". E is the code that the operation
// failed with. All that is named does come out for some call and code, and nothing else does: a
// step that is not named always ends as it does without a failure.
struct Expectation {
    std::string operation;
    std::string onceOutcomes;    // one call fails
    std::string lastingOutcomes; // all calls fail from one on
    std::vector<Remainder> remainders = {};
};

struct SweptScenario {
    std::string name;
    ScenarioMaker make;
    // Of every operation that can fail among those that the scenario calls.
    std::vector<Expectation> expectations;
    // What it leaves behind without a failure, too.
    std::vector<Remainder> remainders = {};
    // Another object, to show that the process can go on.
    ScenarioMaker next;
};

const std::vector<SweptScenario>& SweptScenarios();

} // namespace sweep

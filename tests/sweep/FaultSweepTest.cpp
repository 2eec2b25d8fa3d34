// SPDX-License-Identifier: MIT
//
// Whole scenarios in which, run by run, each operation of the toolbox fails in each call with each
// of its errors: once alone, and from then on. Whatever fails, the object ends as is stated, leaves
// nothing behind that is not stated, and the next object is played as if nothing had happened.
//
// Of operations that are called often not every call fails, unless the environment variable
// VORN_SWEEP is "all". Each run is told on the standard error output first: the last line there
// says what a crash comes of.
#include "tests/sweep/Census.h"
#include "tests/sweep/Expectations.h"
#include "tests/sweep/FaultInjector.h"
#include "tests/sweep/LeaksAllowed.h"
#include "tests/sweep/Operations.h"
#include "toolbox/quicktime/Movies.h"
#include "toolbox/threads/Threads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>
#include <sstream>

namespace sweep
{
namespace
{

// The kind of remainder that only the leak sanitizer can count.
constexpr const char* kMemory = "memory";
constexpr int kFewCalls = 30;   // of which all fail; of more …
constexpr int kFirstCalls = 12; // … all of these, some in between, …
constexpr int kLastCalls = 3;   // … and all of these

using Values = std::map<std::string, std::set<std::string>>; // by step

struct Case {
    const SweptScenario* scenario;
    const Expectation* expectation;
};

// How gtest names the case where it lists parameters.
void PrintTo(const Case& swept, std::ostream* stream)
{
    *stream << swept.scenario->name << ", " << swept.expectation->operation;
}

// Whether of so many calls every one fails.
bool FailEveryCall(int count)
{
    const char* const wish = std::getenv("VORN_SWEEP");
    return count <= kFewCalls || (wish != nullptr && std::string(wish) == "all");
}

// Which of so many calls fail; the last is one more than there are.
std::vector<int> CallsToFail(int count)
{
    const bool all = FailEveryCall(count);
    std::vector<int> calls;
    for (int call = 1; call <= count + 1;) {
        calls.push_back(call);
        const bool isNear = all || call < kFirstCalls || call > count - kLastCalls;
        call = isNear ? call + 1 : std::min(call * 2, count - kLastCalls + 1);
    }
    return calls;
}

Values Parse(const std::string& text)
{
    Values values;
    std::istringstream steps(text);
    for (std::string step; steps >> step;) {
        const size_t equals = step.find('=');
        std::istringstream list(step.substr(equals + 1));
        for (std::string value; std::getline(list, value, ',');) {
            values[step.substr(0, equals)].insert(value);
        }
    }
    return values;
}

std::string TextOf(const Values& values)
{
    std::string text;
    for (const auto& [step, all] : values) {
        text += (text.empty() ? "" : " ") + step;
        for (const std::string& value : all) {
            text += (value == *all.begin() ? "=" : ",") + value;
        }
    }
    return text;
}

struct SweptRun {
    Outcome outcome;
    Census left;
    int injected = 0;
    std::map<std::string, int> calls;
    std::set<std::string> operations;
};

// What a process has from its first object of a kind on is no remainder.
void WarmUp(const SweptScenario& swept)
{
    static std::set<std::string> warm;
    if (warm.insert(swept.name).second) {
        swept.make()->Run();
    }
}

SweptRun RunWith(const SweptScenario& swept, const Fault& fault)
{
    WarmUp(swept);
    SweptRun run;
    const Census before = TakeCensus();
    {
        const std::unique_ptr<Scenario> scenario = swept.make();
        {
            const FaultInjector injector(fault);
            scenario->Run();
            run.injected = injector.Injected();
            run.calls = injector.Calls();
            run.operations = injector.Operations();
        }
        run.outcome = scenario->TheOutcome();
    }
    run.left = Difference(before, TakeCensus());
    RemoveSpoolFiles();
    return run;
}

class FaultSweep : public testing::TestWithParam<Case>
{
protected:
    FaultSweep()
        : swept_(*GetParam().scenario),
          expectation_(*GetParam().expectation), next_{"next", swept_.next, {}, {}, {}},
          faultless_(RunWith(swept_, {})), nextFaultless_(RunWith(next_, {}))
    {
    }

    // Every call that is to fail, with every error; tells what came out otherwise than without.
    Values Sweep(bool lasts)
    {
        Values deviations;
        for (const OSErr error : FailableOperations().at(expectation_.operation)) {
            for (const int call : CallsToFail(faultless_.calls[expectation_.operation])) {
                const Fault fault = {expectation_.operation, error, call, lasts};
                SCOPED_TRACE(TextOf(fault));
                std::cerr << swept_.name << ": " << TextOf(fault) << '\n';
                const SweptRun run = Fail(fault);
                const bool isLast = call > faultless_.calls[expectation_.operation];
                EXPECT_EQ(run.injected == 0, isLast);
                CheckTables(run);
                AddDeviations(run, fault, deviations);
                CheckTelling(run);
                CheckRemainders(run);
                CheckNextObject();
            }
        }
        return deviations;
    }

    SweptRun Fail(const Fault& fault) const
    {
        const auto isMemory = [](const Remainder& left) { return left.kind == kMemory; };
        const LeaksAllowed leaks(
            std::any_of(expectation_.remainders.begin(), expectation_.remainders.end(), isMemory));
        return RunWith(swept_, fault);
    }

    void AddDeviations(const SweptRun& run, const Fault& fault, Values& deviations) const
    {
        // Of an object that was not made there is nothing else to tell.
        const auto make = run.outcome.find("make");
        const bool isMade = make == run.outcome.end() || make->second == "0";
        for (const auto& [step, usual] : faultless_.outcome) {
            const auto found = run.outcome.find(step);
            const std::string value = found == run.outcome.end() ? "-" : found->second;
            if (value != usual && step != "told" && (isMade || step == "make")) {
                deviations[step].insert(step == "page"                         ? "other"
                                        : value == std::to_string(fault.error) ? "E"
                                                                               : value);
            }
        }
    }

    // Where not every call failed, it may have been one of the others from which something comes.
    void CheckDeviations(Values seen, const Values& stated) const
    {
        if (!FailEveryCall(faultless_.calls.at(expectation_.operation))) {
            for (const auto& [step, values] : stated) {
                seen[step].insert(values.begin(), values.end());
            }
        }
        EXPECT_EQ(TextOf(seen), TextOf(stated));
    }

    // After a failure other operations may be called than without.
    static void CheckTables(const SweptRun& run)
    {
        for (const std::string& operation : run.operations) {
            EXPECT_NE(FailableOperations().contains(operation),
                      InfallibleOperations().contains(operation))
                << operation;
        }
    }

    // The host is told what the entry point returns.
    static void CheckTelling(const SweptRun& run)
    {
        if (run.outcome.contains("decode")) {
            EXPECT_EQ(run.outcome.at("told"), run.outcome.at("decode"));
        }
    }

    void CheckRemainders(const SweptRun& run)
    {
        for (const auto& [kind, count] : run.left) {
            int allowed = 0;
            for (const Remainder& remainder : swept_.remainders) {
                allowed += remainder.kind == kind ? remainder.perFailure : 0;
            }
            for (const Remainder& remainder : expectation_.remainders) {
                allowed += remainder.kind == kind ? remainder.perFailure * run.injected : 0;
            }
            EXPECT_TRUE(count >= 0 && count <= allowed) << kind << ": " << count;
            left_.insert(kind);
        }
    }

    void CheckNextObject()
    {
        const SweptRun next = RunWith(next_, {});
        EXPECT_EQ(next.outcome, nextFaultless_.outcome);
        EXPECT_EQ(next.left, Census{});
    }

    const SweptScenario& swept_;
    const Expectation& expectation_;
    const SweptScenario next_;
    SweptRun faultless_;
    const SweptRun nextFaultless_;
    std::set<std::string> left_; // kinds
};

TEST_P(FaultSweep, EndsAsStatedWhereverTheOperationFails)
{
    CheckDeviations(Sweep(false), Parse(expectation_.onceOutcomes));
    CheckDeviations(Sweep(true), Parse(expectation_.lastingOutcomes));
    for (const Remainder& remainder : expectation_.remainders) {
        EXPECT_TRUE(left_.contains(remainder.kind) || remainder.kind == kMemory)
            << "never left: " << remainder.kind;
    }
}

std::vector<Case> AllCases()
{
    std::vector<Case> cases;
    for (const SweptScenario& scenario : SweptScenarios()) {
        for (const Expectation& expectation : scenario.expectations) {
            cases.push_back({&scenario, &expectation});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Of, FaultSweep, testing::ValuesIn(AllCases()), [](const auto& one) {
    return one.param.scenario->name + "_" + one.param.expectation->operation;
});

struct TableCase {
    const SweptScenario* scenario;
};

void PrintTo(const TableCase& table, std::ostream* stream)
{
    *stream << table.scenario->name;
}

class SweepTable : public testing::TestWithParam<TableCase>
{
protected:
    static const SweptScenario& Swept() { return *GetParam().scenario; }
};

TEST_P(SweepTable, HasEveryOperationThatTheScenarioCalls)
{
    std::set<std::string> stated;
    for (const Expectation& expectation : Swept().expectations) {
        EXPECT_TRUE(stated.insert(expectation.operation).second) << expectation.operation;
    }
    std::set<std::string> failable;
    for (const std::string& operation : RunWith(Swept(), {}).operations) {
        const bool canFail = FailableOperations().contains(operation);
        EXPECT_NE(canFail, InfallibleOperations().contains(operation)) << operation;
        if (canFail) {
            failable.insert(operation);
        }
    }
    EXPECT_EQ(stated, failable);
}

TEST_P(SweepTable, StatesWhatIsLeftWithoutAFailure)
{
    Census stated;
    for (const Remainder& remainder : Swept().remainders) {
        stated[remainder.kind] += remainder.perFailure;
    }
    EXPECT_EQ(RunWith(Swept(), {}).left, stated);
}

TEST_P(SweepTable, IsOfAScenarioThatEndsTheSameEveryTime)
{
    const SweptRun first = RunWith(Swept(), {});
    const SweptRun second = RunWith(Swept(), {});
    EXPECT_EQ(first.outcome, second.outcome);
    EXPECT_EQ(first.calls, second.calls);
}

std::vector<TableCase> AllTables()
{
    std::vector<TableCase> tables;
    for (const SweptScenario& scenario : SweptScenarios()) {
        tables.push_back({&scenario});
    }
    return tables;
}

INSTANTIATE_TEST_SUITE_P(Of, SweepTable, testing::ValuesIn(AllTables()),
                         [](const auto& one) { return one.param.scenario->name; });

} // namespace
} // namespace sweep

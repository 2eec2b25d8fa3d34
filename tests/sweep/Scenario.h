// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace sweep
{

// What came out at the boundary, by the name of the step: result codes as numbers, and words for
// what is seen.
using Outcome = std::map<std::string, std::string>;

// A host and what it does with one object. Made and destroyed while nothing goes wrong, so that
// only what the object does can fail: not the host's own port, clock and thread.
class Scenario
{
public:
    Scenario() = default;
    virtual ~Scenario() = default;
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;

    // From the making of the object to its end.
    virtual void Run() = 0;
    const Outcome& TheOutcome() const { return outcome_; }

protected:
    void Tell(const std::string& step, const std::string& what) { outcome_[step] = what; }
    void Tell(const std::string& step, int code) { Tell(step, std::to_string(code)); }
    // Of a step that is done many times: the first code that is not 0 counts.
    void TellFirstError(const std::string& step, int code)
    {
        const auto told = outcome_.find(step);
        if (told == outcome_.end() || told->second == "0") {
            Tell(step, code);
        }
    }

private:
    Outcome outcome_;
};

using ScenarioMaker = std::function<std::unique_ptr<Scenario>()>;

} // namespace sweep

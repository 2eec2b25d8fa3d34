// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace test
{

// Watches the toolbox for the length of a scope: keeps the calls in order and makes some of them
// fail. One at a time. Calls are kept by name; scripted services add their arguments behind it.
class ToolboxProbe
{
public:
    ToolboxProbe();
    ~ToolboxProbe();
    ToolboxProbe(const ToolboxProbe&) = delete;
    ToolboxProbe& operator=(const ToolboxProbe&) = delete;

    static ToolboxProbe* Current();

    // The nth call of `operation` from now on fails with `err`, the others do not.
    void Fail(const std::string& operation, OSErr err, int nth = 1);
    // Keeps a call; what it answers is the error it must fail with.
    OSErr Note(const std::string& call);
    // The calls of these operations, in order.
    std::vector<std::string> Calls(const std::vector<std::string>& operations) const;
    int Count(const std::string& operation) const;
    void Forget() { calls_.clear(); }

    // Told of every call before it is kept.
    std::function<void(const std::string&)> onCall;

private:
    struct Failure {
        OSErr err;
        int callsToGo;
    };
    std::vector<std::string> calls_;
    std::map<std::string, Failure> failures_;
};

} // namespace test

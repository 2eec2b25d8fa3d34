// SPDX-License-Identifier: MIT
#include "tests/support/ToolboxProbe.h"

#include "toolbox/probe/Probe.h"

#include <algorithm>

namespace test
{
namespace
{

ToolboxProbe* gCurrent = nullptr;

std::string NameOf(const std::string& call)
{
    return call.substr(0, call.find(' '));
}

OSErr Observe(const char* operation, void* probe)
{
    return static_cast<ToolboxProbe*>(probe)->Note(operation);
}

} // namespace

ToolboxProbe::ToolboxProbe()
{
    gCurrent = this;
    SetToolboxObserver(Observe, this);
}

ToolboxProbe::~ToolboxProbe()
{
    SetToolboxObserver(nullptr, nullptr);
    gCurrent = nullptr;
}

ToolboxProbe* ToolboxProbe::Current()
{
    return gCurrent;
}

void ToolboxProbe::Fail(const std::string& operation, OSErr err, int nth)
{
    failures_[operation] = {err, nth};
}

OSErr ToolboxProbe::Note(const std::string& call)
{
    if (onCall) {
        onCall(call);
    }
    calls_.push_back(call);
    const auto failure = failures_.find(NameOf(call));
    if (failure == failures_.end() || --failure->second.callsToGo > 0) {
        return 0;
    }
    const OSErr err = failure->second.err;
    failures_.erase(failure);
    return err;
}

std::vector<std::string> ToolboxProbe::Calls(const std::vector<std::string>& operations) const
{
    std::vector<std::string> found;
    std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(found), [&](const auto& call) {
        return std::find(operations.begin(), operations.end(), NameOf(call)) != operations.end();
    });
    return found;
}

int ToolboxProbe::Count(const std::string& operation) const
{
    return static_cast<int>(Calls({operation}).size());
}

} // namespace test

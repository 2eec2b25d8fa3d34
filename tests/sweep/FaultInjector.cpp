// SPDX-License-Identifier: MIT
#include "tests/sweep/FaultInjector.h"

#include "toolbox/probe/Probe.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace sweep
{
namespace
{

// Far more than any run makes: code that gets this far never ends.
constexpr int kMostCalls = 300'000;

} // namespace

std::string TextOf(const Fault& fault)
{
    if (fault.operation.empty()) {
        return "without a fault";
    }
    return fault.operation + " fails with " + std::to_string(fault.error) + " at call " +
           std::to_string(fault.call) + (fault.lasts ? " and ever after" : "");
}

FaultInjector::FaultInjector(Fault fault) : fault_(std::move(fault))
{
    SetToolboxObserver(Observe, this);
}

FaultInjector::~FaultInjector()
{
    SetToolboxObserver(nullptr, nullptr);
}

OSErr FaultInjector::Observe(const char* operation, void* injector)
{
    return static_cast<FaultInjector*>(injector)->Note(operation);
}

OSErr FaultInjector::Note(const char* operation)
{
    if (++total_ > kMostCalls) {
        std::fprintf(stderr, "%s: it goes on without end, now with %s\n", TextOf(fault_).c_str(),
                     operation);
        std::abort();
    }
    names_.insert(operation);
    if (fault_.operation.empty()) {
        ++calls_[operation];
        return 0;
    }
    if (fault_.operation != operation) {
        return 0;
    }
    ++called_;
    const bool fails = called_ == fault_.call || (fault_.lasts && called_ > fault_.call);
    injected_ += fails ? 1 : 0;
    return fails ? fault_.error : OSErr{0};
}

} // namespace sweep

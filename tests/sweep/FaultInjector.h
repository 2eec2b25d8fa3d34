// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <map>
#include <set>
#include <string>

namespace sweep
{

// One thing that goes wrong: from its `call`th call on, or only then, the operation fails.
struct Fault {
    std::string operation; // empty: nothing goes wrong
    OSErr error = 0;
    int call = 1;
    bool lasts = false;
};

std::string TextOf(const Fault& fault);

// Watches the toolbox for the length of a scope and makes the fault happen. One at a time.
class FaultInjector
{
public:
    explicit FaultInjector(Fault fault);
    ~FaultInjector();
    FaultInjector(const FaultInjector&) = delete;
    FaultInjector& operator=(const FaultInjector&) = delete;

    const Fault& TheFault() const { return fault_; }
    // How often the operation failed.
    int Injected() const { return injected_; }
    // How often each operation was called; counted only while nothing goes wrong.
    const std::map<std::string, int>& Calls() const { return calls_; }
    // The operations that were called.
    std::set<std::string> Operations() const { return {names_.begin(), names_.end()}; }

private:
    static OSErr Observe(const char* operation, void* injector);
    OSErr Note(const char* operation);

    const Fault fault_;
    std::map<std::string, int> calls_;
    std::set<const char*> names_;
    int total_ = 0;
    int called_ = 0; // the fault's operation
    int injected_ = 0;
};

} // namespace sweep

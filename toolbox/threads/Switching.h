// SPDX-License-Identifier: MIT
//
// Going from one stack to another and back. A switch carries what the machine and the language
// keep per operating-system thread: registers, errno and the state of C++ exceptions, so that a
// stack may be left in the middle of a catch block. The memory checkers are told of every stack
// and every switch; nobody else needs to know of them.
#pragma once

#include "toolbox/threads/StackMemory.h"

#include <csetjmp>
#include <optional>
#include <ucontext.h>

namespace toolbox
{

// The exceptions being handled and in flight, as the C++ ABI lays it out.
struct ExceptionState {
    void* caughtExceptions = nullptr;
    unsigned int uncaughtExceptions = 0;
};

class ExecutionContext
{
public:
    // Runs on the new stack and must not throw. It answers where to go on when it is done; from
    // then on its own context is over and may be destroyed, by someone on another stack.
    using Entry = ExecutionContext& (*)(void* argument);

    // Starts at the first switch to it. Throws std::bad_alloc if there is no stack to be had.
    ExecutionContext(size_t stackBytes, Entry entry, void* argument);
    // Gives the stack back without unwinding it: must be over or never have been started.
    ~ExecutionContext();
    ExecutionContext(const ExecutionContext&) = delete;
    ExecutionContext& operator=(const ExecutionContext&) = delete;

    // The one that runs now; at first the operating system's own stack.
    static ExecutionContext& Current();
    // The stack it runs on; null for the operating system's own. May be asked by a signal handler.
    static const StackMemory* CurrentStack();
    // Stops the current one here and goes on with `next`, which is not the current one. Returns
    // when someone switches back.
    static void SwitchTo(ExecutionContext& next);

private:
    ExecutionContext() = default; // the operating system's own stack
    static void Run();
    [[noreturn]] void Enter();
    void Leave(bool forGood, ExecutionContext& next);
    void Arrive();

    std::optional<StackMemory> stack_;
    Entry entry_ = nullptr;
    void* argument_ = nullptr;
    // The first time it runs, it begins at start_, and afterwards it goes on at resume_, but under
    // a memory checker always at start_.
    ucontext_t start_{};
    [[maybe_unused]] std::jmp_buf resume_{};
    bool isStarted_ = true; // the operating system's own stack always is
    ExceptionState exceptions_;
    int errno_ = 0;
    // For the memory checkers; unused without them.
    const void* checkedBottom_ = nullptr;
    size_t checkedSize_ = 0;
    void* fakeStack_ = nullptr;
    unsigned int valgrindStack_ = 0;
};

} // namespace toolbox

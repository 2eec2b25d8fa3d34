// SPDX-License-Identifier: MIT

// The checked longjmp takes going to another stack for an error.
#undef _FORTIFY_SOURCE

#include "toolbox/threads/Switching.h"

#include "toolbox/threads/StackOverflow.h"

#include <cerrno>
#include <cstdlib>
#include <cxxabi.h>

#if defined(__SANITIZE_ADDRESS__)
#define TOOLBOX_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TOOLBOX_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef TOOLBOX_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#include <sanitizer/lsan_interface.h>
#endif
#if __has_include(<valgrind/valgrind.h>)
#include <valgrind/valgrind.h>
#define TOOLBOX_VALGRIND 1
#endif

namespace toolbox
{
namespace
{

// The runtime's own record, which its headers do not lay open.
ExceptionState& RuntimeExceptionState()
{
    return *reinterpret_cast<ExceptionState*>(abi::__cxa_get_globals());
}

ExecutionContext* gCurrent = nullptr;
ExecutionContext* gLeft = nullptr; // where the switch that is under way comes from

#ifdef TOOLBOX_ADDRESS_SANITIZER

// Blocks that only a suspended frame points to are not leaks.
void TellOfNewStack(void* bottom, size_t size)
{
    __lsan_register_root_region(bottom, size);
}

// The last frames on a stack never return, so their red zones would outlive them.
void TellOfFreedStack(void* bottom, size_t size)
{
    __lsan_unregister_root_region(bottom, size);
    __asan_unpoison_memory_region(bottom, size);
}

void TellOfLeaving(void** fakeStack, const void* nextBottom, size_t nextSize)
{
    __sanitizer_start_switch_fiber(fakeStack, nextBottom, nextSize);
}

void TellOfArriving(void* fakeStack, const void** leftBottom, size_t* leftSize)
{
    __sanitizer_finish_switch_fiber(fakeStack, leftBottom, leftSize);
}

#else

void TellOfNewStack(void*, size_t) {}
void TellOfFreedStack(void*, size_t) {}
void TellOfLeaving(void**, const void*, size_t) {}
void TellOfArriving(void*, const void**, size_t*) {}

#endif

#ifdef TOOLBOX_VALGRIND

unsigned int RegisterWithValgrind(void* bottom, size_t size)
{
    return VALGRIND_STACK_REGISTER(bottom, static_cast<char*>(bottom) + size);
}

void DeregisterFromValgrind(unsigned int stack)
{
    VALGRIND_STACK_DEREGISTER(stack);
}

#else

unsigned int RegisterWithValgrind(void*, size_t)
{
    return 0;
}

void DeregisterFromValgrind(unsigned int) {}

#endif

} // namespace

ExecutionContext::ExecutionContext(size_t stackBytes, Entry entry, void* argument)
    : stack_(std::in_place, stackBytes), entry_(entry), argument_(argument),
      checkedBottom_(stack_->Bottom()), checkedSize_(stack_->Size())
{
    WatchForStackOverflow();
    getcontext(&start_);
    start_.uc_stack.ss_sp = stack_->Bottom();
    start_.uc_stack.ss_size = stack_->Size();
    start_.uc_link = nullptr;
    makecontext(&start_, &ExecutionContext::Run, 0);
    isStarted_ = false;
    TellOfNewStack(stack_->Bottom(), stack_->Size());
    valgrindStack_ = RegisterWithValgrind(stack_->Bottom(), stack_->Size());
}

ExecutionContext::~ExecutionContext()
{
    DeregisterFromValgrind(valgrindStack_);
    TellOfFreedStack(stack_->Bottom(), stack_->Size());
}

ExecutionContext& ExecutionContext::Current()
{
    if (gCurrent == nullptr) {
        gCurrent = new ExecutionContext; // as long as the process
    }
    return *gCurrent;
}

const StackMemory* ExecutionContext::CurrentStack()
{
    return gCurrent != nullptr && gCurrent->stack_ ? &*gCurrent->stack_ : nullptr;
}

#ifdef TOOLBOX_ADDRESS_SANITIZER

// The sanitizer takes a longjmp for leaving frames behind; it knows what swapcontext does.
void ExecutionContext::SwitchTo(ExecutionContext& next)
{
    ExecutionContext& self = Current();
    self.Leave(false, next);
    swapcontext(&self.start_, &next.start_);
    self.Arrive();
}

void ExecutionContext::Enter()
{
    setcontext(&start_);
    std::abort();
}

#else

// swapcontext would ask the kernel for the signal mask at every switch, which costs three times
// as much as all the rest; a context is only started that way.
void ExecutionContext::SwitchTo(ExecutionContext& next)
{
    ExecutionContext& self = Current();
    self.Leave(false, next);
    if (_setjmp(self.resume_) == 0) {
        next.Enter();
    }
    gCurrent->Arrive();
}

void ExecutionContext::Enter()
{
    if (isStarted_) {
        _longjmp(resume_, 1);
    }
    isStarted_ = true;
    setcontext(&start_);
    std::abort();
}

#endif

// The outermost frame of every stack but the operating system's.
void ExecutionContext::Run()
{
    ExecutionContext& self = *gCurrent;
    self.Arrive();
    ExecutionContext& next = self.entry_(self.argument_);
    self.Leave(true, next);
    next.Enter();
}

void ExecutionContext::Leave(bool forGood, ExecutionContext& next)
{
    errno_ = errno;
    exceptions_ = RuntimeExceptionState();
    gLeft = this;
    gCurrent = &next;
    TellOfLeaving(forGood ? nullptr : &fakeStack_, next.checkedBottom_, next.checkedSize_);
}

void ExecutionContext::Arrive()
{
    // Only here does one learn where the operating system's own stack lies.
    TellOfArriving(fakeStack_, &gLeft->checkedBottom_, &gLeft->checkedSize_);
    RuntimeExceptionState() = exceptions_;
    errno = errno_;
}

} // namespace toolbox

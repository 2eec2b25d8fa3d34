// SPDX-License-Identifier: MIT
#include "toolbox/threads/Fiber.h"

#include "toolbox/threads/Switching.h"

#include <cassert>
#include <exception>
#include <utility>

namespace toolbox
{

struct Fiber::State {
    State(std::function<void()> work, size_t stackSize)
        : body(std::move(work)), context(std::in_place, stackSize, &State::Run, this)
    {
    }

    static ExecutionContext& Run(void* argument);

    std::function<void()> body;
    std::optional<ExecutionContext> context; // until the body has ended
    ExecutionContext* resumer = nullptr;     // while the body runs
    std::exception_ptr thrown;
    bool started = false;
};

ExecutionContext& Fiber::State::Run(void* argument)
{
    auto& state = *static_cast<State*>(argument);
    try {
        state.body();
    } catch (...) {
        state.thrown = std::current_exception();
    }
    return *std::exchange(state.resumer, nullptr);
}

Fiber::Fiber(std::function<void()> body, size_t stackSize)
    : state_(std::make_unique<State>(std::move(body), stackSize))
{
}

Fiber::~Fiber()
{
    assert(!IsStarted() || IsEnded());
}

void Fiber::Resume()
{
    State& state = *state_;
    assert(!IsRunning() && !IsEnded());
    state.started = true;
    state.resumer = &ExecutionContext::Current();
    ExecutionContext::SwitchTo(*state.context);
    if (state.resumer != nullptr) {
        state.resumer = nullptr; // it suspended itself
        return;
    }
    state.context.reset();
    if (state.thrown != nullptr) {
        std::rethrow_exception(std::exchange(state.thrown, nullptr));
    }
}

void Fiber::Suspend()
{
    assert(IsRunning());
    ExecutionContext::SwitchTo(*state_->resumer);
}

bool Fiber::IsStarted() const
{
    return state_->started;
}

bool Fiber::IsRunning() const
{
    return state_->resumer != nullptr;
}

bool Fiber::IsEnded() const
{
    return !state_->context.has_value();
}

} // namespace toolbox

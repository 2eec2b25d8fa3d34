// SPDX-License-Identifier: MIT
//
// A coroutine with a stack of its own: work that stops in the middle and goes on later, without
// being a thread. Whoever resumes it lends it his time and stays the current thread.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace toolbox
{

class Fiber
{
public:
    // Throws std::bad_alloc if there is no stack to be had. `stackSize` is a minimum in bytes.
    Fiber(std::function<void()> body, size_t stackSize);
    // The body must have ended or never have been started.
    ~Fiber();
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;

    // Runs the body until it suspends itself or ends. Not from inside the body. An exception that
    // leaves the body comes out here, once.
    void Resume();
    // Inside the body only: back to whoever resumed it.
    void Suspend();
    bool IsStarted() const;
    bool IsRunning() const; // between Resume and the suspension or end it leads to
    bool IsEnded() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace toolbox

// SPDX-License-Identifier: MIT
#pragma once

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace sweep
{

// What is allocated in its lifetime is no leak to the leak sanitizer, if there is one and if that
// is allowed.
class LeaksAllowed
{
public:
    explicit LeaksAllowed(bool allowed) : allowed_(allowed)
    {
#ifdef __SANITIZE_ADDRESS__
        if (allowed_) {
            __lsan_disable();
        }
#endif
    }
    ~LeaksAllowed()
    {
#ifdef __SANITIZE_ADDRESS__
        if (allowed_) {
            __lsan_enable();
        }
#endif
    }
    LeaksAllowed(const LeaksAllowed&) = delete;
    LeaksAllowed& operator=(const LeaksAllowed&) = delete;

private:
    [[maybe_unused]] const bool allowed_;
};

} // namespace sweep

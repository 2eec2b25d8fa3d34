// SPDX-License-Identifier: MIT
//
// A call into a bundle from the application thread.
#pragma once

#include "toolbox/threads/Threads.h"

namespace viewer
{

// Made around each call of an entry point: what movies do meanwhile is counted for `owner`. While
// one exists, the event loop does not turn, whichever thread runs.
class BundleCall
{
public:
    explicit BundleCall(void* owner) : formerOwner_(GetStatisticsOwner())
    {
        SetStatisticsOwner(owner);
        ++depth_;
    }
    ~BundleCall()
    {
        --depth_;
        SetStatisticsOwner(formerOwner_);
    }
    BundleCall(const BundleCall&) = delete;
    BundleCall& operator=(const BundleCall&) = delete;

    static bool IsApplicationInside() { return depth_ > 0; }

private:
    static inline int depth_ = 0;
    void* formerOwner_;
};

} // namespace viewer

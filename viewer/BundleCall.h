// SPDX-License-Identifier: MIT
//
// A call into a bundle from the application thread.
#pragma once

namespace viewer
{

// Made around each call of an entry point: what movies do meanwhile is counted for `owner`. While
// one exists, the event loop does not turn, whichever thread runs.
class BundleCall
{
public:
    explicit BundleCall(void* owner);
    ~BundleCall();
    BundleCall(const BundleCall&) = delete;
    BundleCall& operator=(const BundleCall&) = delete;

    static bool IsApplicationInside();

private:
    void* formerOwner_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// How time passes for the page while its application thread is held up inside a bundle.
#pragma once

namespace viewer
{

class HostTime
{
public:
    virtual ~HostTime() = default;

    // Lets some time pass, a few milliseconds at most, in which bytes may arrive. Called for an
    // object that waits for its bytes while nobody is in the event loop.
    virtual void LetTimePass() = 0;
};

} // namespace viewer

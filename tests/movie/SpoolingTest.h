// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/MovieTest.h"

namespace test
{

inline constexpr SInt32 kChunk = 16384;

// A movie plug-in that spools.
class SpoolingTest : public MovieTest
{
protected:
    // Runs what is left of the tasking thread after a whole rendering.
    static void EndTasking(const VornMoviePlugin& plugin)
    {
        while (plugin.taskingThread != kNoThreadID) {
            YieldToAnyThread();
        }
    }
};

// Keeps what it is told, in words. Must outlive the plug-in, which tells it of its end.
class KeptProgress : public VornMovieLoadListener
{
public:
    void LoadComplete(SInt32 bytes) override
    {
        told.push_back("complete " + std::to_string(bytes));
    }
    void LoadProgress(SInt32 bytes) override
    {
        told.push_back("progress " + std::to_string(bytes));
    }
    void NotifyListenerOfPluginDeath() override { told.push_back("death"); }

    Calls told;
};

} // namespace test

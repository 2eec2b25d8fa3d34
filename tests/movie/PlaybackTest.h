// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"

namespace test
{

// A movie plug-in whose movie has a picture.
class PlaybackTest : public MovieTest
{
protected:
    PlaybackTest() { Movies().movieBox = {5, 6, 105, 206}; }

    // A plug-in whose movie is open but has no controller.
    std::unique_ptr<VornMoviePlugin> MakeOpenedPlugin()
    {
        auto plugin = MakePlugin();
        plugin->moviePort = port;
        EXPECT_EQ(plugin->OpenMovie(true, true), noErr);
        probe.Forget();
        return plugin;
    }
};

} // namespace test

// SPDX-License-Identifier: MIT
//
// What the example's own checks leave out.
#include "tests/viewer/EndToEnd.h"

#include <cstdlib>

namespace
{

TEST_F(EndToEnd, TheMinimalHostTakesABundleWithASlashAtItsEnd)
{
    const std::string command = std::string(MINIMAL_HOST) + " " + MOVIE_BUNDLE + "/ " +
                                Clip("tiny.mpg") + " " + viewer.Folder().Path("page.ppm") +
                                " > /dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_FALSE(viewer.Folder().Read("page.ppm").empty());
}

} // namespace

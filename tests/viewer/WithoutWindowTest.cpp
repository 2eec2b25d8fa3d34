// SPDX-License-Identifier: MIT
//
// The viewer's beginning as a build without a window has it.
#include "tests/viewer/TestFiles.h"
#include "viewer/Viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::AllOf;
using testing::HasSubstr;

// What the user is told.
std::string ToldOf(std::vector<std::string> arguments)
{
    const TestFolder folder;
    const std::string mail = folder.Write(
        "text.eml", "MIME-Version: 1.0\r\nContent-Type: text/plain\r\n\r\nsome words\r\n");
    arguments.insert(arguments.begin(), {"vornview", "--plugins", FAKE_PLUGINS});
    arguments.push_back(mail);
    std::vector<char*> argv;
    for (std::string& each : arguments) {
        argv.push_back(each.data());
    }
    argv.push_back(nullptr);
    testing::internal::CaptureStderr();
    const int status = viewer::RunViewer(static_cast<int>(arguments.size()), argv.data());
    EXPECT_EQ(status, 0);
    return testing::internal::GetCapturedStderr();
}

TEST(WithoutWindow, TheViewerSaysSoAndWhatToDo)
{
    EXPECT_THAT(ToldOf({}), AllOf(HasSubstr("there is no window here"),
                                  HasSubstr("build it with SDL2 and FreeType"),
                                  HasSubstr("--snapshot, --wav and --report show what comes")));
}

TEST(WithoutWindow, NobodyIsToldWhoWantsNone)
{
    EXPECT_THAT(ToldOf({"--headless"}), Not(HasSubstr("window")));
}

} // namespace

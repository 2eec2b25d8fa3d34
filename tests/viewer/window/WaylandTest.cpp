// SPDX-License-Identifier: MIT
//
// The window where there is no X server: a Wayland compositor, whose own screen is a hidden one.
#include "tests/viewer/window/RunningWindow.h"
#include "tests/viewer/window/ShownPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

constexpr const char* kSocket = "wayland-test";
constexpr int kMostLooks = 400;
constexpr auto kLook = std::chrono::milliseconds(50);

// Every window takes all of it.
class WaylandScreen : public HiddenScreen
{
public:
    static bool IsPossible()
    {
        return HiddenScreen::IsPossible() && std::system("command -v weston >/dev/null") == 0;
    }
    WaylandScreen()
    {
        std::filesystem::permissions(folder_.Path(""), std::filesystem::perms::owner_all);
        compositor_ = fork();
        if (compositor_ == 0) {
            Compose();
        }
        for (int i = 0; !std::filesystem::exists(folder_.Path(kSocket)); ++i) {
            if (i == kMostLooks) {
                throw std::runtime_error("weston did not start: " + folder_.Read("log"));
            }
            std::this_thread::sleep_for(kLook);
        }
    }
    ~WaylandScreen() override
    {
        kill(compositor_, SIGTERM);
        waitpid(compositor_, nullptr, 0);
    }
    void Offer() const override
    {
        unsetenv("DISPLAY");
        setenv("XDG_RUNTIME_DIR", folder_.Path("").c_str(), 1);
        setenv("WAYLAND_DISPLAY", kSocket, 1);
        // The drivers that SDL loads there, and has unloaded at the end, keep memory.
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    }

private:
    [[noreturn]] void Compose() const
    {
        setenv("DISPLAY", Name().c_str(), 1);
        setenv("XDG_RUNTIME_DIR", folder_.Path("").c_str(), 1);
        const std::string width = "--width=" + std::to_string(kWidth);
        const std::string height = "--height=" + std::to_string(kHeight);
        const std::string socket = std::string("--socket=") + kSocket;
        const std::string log = "--log=" + folder_.Path("log");
        execlp("weston", "weston", "--backend=x11-backend.so", "--shell=kiosk-shell.so",
               "--use-pixman", "--idle-time=0", "--no-config", width.c_str(), height.c_str(),
               socket.c_str(), log.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }

    TestFolder folder_;
    pid_t compositor_ = -1;
};

bool ShowsMovie(const Screenshot& shot)
{
    return (shot.At(46, 166) & 0xFF00FF) >= 0xE00000;
}

TEST(Wayland, AMoviePlaysInAWindow)
{
    if (!WaylandScreen::IsPossible()) {
        GTEST_SKIP() << "weston, Xvfb, xdotool or import is missing";
    }
    const WaylandScreen screen;
    RunningWindow window(screen, {"--play", Clip("mpeg1.mpg")});
    ASSERT_TRUE(window.WaitUntil(ShowsMovie));
    const std::vector<int> first = NumberShown(window.Look());
    EXPECT_TRUE(
        window.WaitUntil([&](const Screenshot& shot) { return NumberShown(shot) != first; }));
    window.Do("key q");
    const RunningWindow::Result result = window.WaitForEnd();
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_GT(result.report["objects"][0]["pictures_shown"], 1);
    EXPECT_THAT(window.LeftBehind(), testing::IsEmpty());
}

} // namespace

// SPDX-License-Identifier: MIT
#include "tests/viewer/window/RunningWindow.h"

#include "tests/viewer/SanitizerNote.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr auto kLook = std::chrono::milliseconds(50);
constexpr int kMostLooks = 400; // patience for a machine that is busy
constexpr int kLooksAtRest = 5;

bool Succeeds(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

[[noreturn]] void Become(const std::vector<std::string>& command)
{
    std::vector<char*> pointers;
    for (const std::string& word : command) {
        pointers.push_back(const_cast<char*>(word.c_str()));
    }
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

void SendTo(const std::string& path, int descriptor)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, descriptor);
    close(file);
}

} // namespace

bool HiddenScreen::IsPossible()
{
    return Succeeds("command -v Xvfb") && Succeeds("command -v xdotool") &&
           Succeeds("command -v import");
}

// The server picks a free number and tells it when it is ready. It must not begin anew when its
// last client leaves, as such servers do: whoever comes at that moment is turned away, be it the
// program that is to be looked at.
HiddenScreen::HiddenScreen()
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    server_ = fork();
    if (server_ == 0) {
        close(ends[0]);
        SendTo("/dev/null", STDERR_FILENO);
        const std::string size = std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x24";
        Become({"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", size, "-nolisten",
                "tcp", "-noreset"});
    }
    close(ends[1]);
    char digit = 0;
    name_ = ":";
    while (read(ends[0], &digit, 1) == 1 && digit != '\n') {
        name_ += digit;
    }
    close(ends[0]);
    if (name_.size() == 1) {
        throw std::runtime_error("Xvfb did not start");
    }
}

HiddenScreen::~HiddenScreen()
{
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
}

void HiddenScreen::Offer() const
{
    setenv("DISPLAY", name_.c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
}

// A manager announces the desktops it keeps.
bool HiddenScreen::StartManager() const
{
    const std::string display = "DISPLAY=" + name_;
    if (std::system((display + " openbox >/dev/null 2>&1 &").c_str()) != 0) {
        return false;
    }
    for (int i = 0; i < kMostLooks; ++i) {
        if (Succeeds(display + " xdotool get_desktop")) {
            return true;
        }
        std::this_thread::sleep_for(kLook);
    }
    return false;
}

RunningWindow::RunningWindow(const HiddenScreen& screen, const std::vector<std::string>& arguments,
                             const std::string& sound, Size size)
    : screen_(screen)
{
    std::filesystem::create_directory(folder_.Path("tmp"));
    // SDL asks the message bus, whose library keeps some memory.
    const std::string leaks =
        "print_suppressions=0:suppressions=" + folder_.Write("leaks", "leak:libdbus\n");
    std::vector<std::string> command = {VORNVIEW, "--report", folder_.Path("report"), "--pictures",
                                        folder_.Path("")};
    if (size == Size::kScreen) {
        command.insert(command.end(), {"--size", std::to_string(HiddenScreen::kWidth) + "x" +
                                                     std::to_string(HiddenScreen::kHeight)});
    }
    command.insert(command.end(), arguments.begin(), arguments.end());
    program_ = fork();
    if (program_ == 0) {
        screen.Offer();
        setenv("TMPDIR", folder_.Path("tmp").c_str(), 1);
        setenv("SDL_AUDIODRIVER", sound.c_str(), 1);
        setenv("SDL_DISKAUDIOFILE", "/nonexistent/sound", 1);
        unsetenv("SDL_VIDEODRIVER");
        setenv("LSAN_OPTIONS", leaks.c_str(), 1);
        for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
            std::signal(number, SIG_DFL);
        }
        SendTo(folder_.Path("out"), STDOUT_FILENO);
        SendTo(folder_.Path("err"), STDERR_FILENO);
        Become(command);
    }
}

RunningWindow::~RunningWindow()
{
    if (program_ > 0) {
        kill(program_, SIGKILL);
        waitpid(program_, nullptr, 0);
    }
}

Screenshot RunningWindow::Look() const
{
    const std::string path = folder_.Path("look.png");
    if (!Succeeds("DISPLAY=" + screen_.Name() + " import -silent -window root " + path)) {
        return {};
    }
    return ReadScreenshot(path);
}

bool RunningWindow::WaitUntil(const std::function<bool(const Screenshot&)>& isAsExpected) const
{
    for (int i = 0; i < kMostLooks; ++i) {
        if (isAsExpected(Look())) {
            return true;
        }
        std::this_thread::sleep_for(kLook);
    }
    std::cerr << State() << '\n';
    return false;
}

// For whoever has to find out what it was that did not show.
std::string RunningWindow::State() const
{
    const Screenshot last = Look();
    std::string state;
    std::ifstream status("/proc/" + std::to_string(program_) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("State:") || line.starts_with("voluntary_ctxt_switches:")) {
            state += line + "; ";
        }
    }
    return state + "screen " + std::to_string(last.width) + "x" + std::to_string(last.height) +
           "; it said: " + folder_.Read("out") + folder_.Read("err");
}

Screenshot RunningWindow::LookAtRest() const
{
    Screenshot last = Look();
    int timesSame = 0;
    WaitUntil([&](const Screenshot& shot) {
        timesSame = shot == last ? timesSame + 1 : 0;
        last = shot;
        return timesSame == kLooksAtRest;
    });
    return last;
}

void RunningWindow::Do(const std::string& commands) const
{
    Succeeds("DISPLAY=" + screen_.Name() + " xdotool " + commands);
}

void RunningWindow::Signal(int number) const
{
    kill(program_, number);
}

long RunningWindow::CountSleeps() const
{
    constexpr std::string_view kLabel = "voluntary_ctxt_switches:";
    long sum = 0;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(program_) + "/task")) {
        std::ifstream status(task.path() / "status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with(kLabel)) {
                sum += std::stol(line.substr(kLabel.size()));
            }
        }
    }
    return sum;
}

RunningWindow::Result RunningWindow::WaitForEnd()
{
    Result result;
    int status = 0;
    int looks = 0;
    while (waitpid(program_, &status, WNOHANG) == 0) {
        if (++looks == kMostLooks) {
            return result;
        }
        std::this_thread::sleep_for(kLook);
    }
    program_ = -1;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.err = WithoutSanitizerNote(folder_.Read("err"));
    result.report = nlohmann::json::parse(folder_.Read("report"), nullptr, false);
    return result;
}

std::vector<std::string> RunningWindow::LeftBehind() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path("tmp"))) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

// SPDX-License-Identifier: MIT
#include "tests/viewer/RunningViewer.h"

#include "tests/viewer/SanitizerNote.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr size_t kWavHeaderSize = 44;

void SendTo(const std::string& path, int descriptor)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, descriptor);
    close(file);
}

[[noreturn]] void BecomeVornview(const std::vector<std::string>& arguments,
                                 const std::string& temporary, const TestFolder& output)
{
    std::vector<char*> pointers;
    pointers.push_back(const_cast<char*>(VORNVIEW));
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        std::signal(number, SIG_DFL); // a script in the background has it ignored
    }
    setenv("TMPDIR", temporary.c_str(), 1);
    unsetenv("DISPLAY"); // whoever runs the tests wants no window
    unsetenv("WAYLAND_DISPLAY");
    SendTo(output.Path("out"), STDOUT_FILENO);
    SendTo(output.Path("err"), STDERR_FILENO);
    execv(VORNVIEW, pointers.data());
    _exit(127);
}

} // namespace

ViewerResult RunVornviewAnd(const std::function<void(pid_t program)>& meanwhile,
                            const std::vector<std::string>& arguments, const std::string& temporary)
{
    const TestFolder output;
    const pid_t child = fork();
    if (child == 0) {
        BecomeVornview(arguments, temporary, output);
    }
    meanwhile(child);
    int status = 0;
    waitpid(child, &status, 0);
    ViewerResult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = output.Read("out");
    result.err = WithoutSanitizerNote(output.Read("err"));
    return result;
}

ViewerResult RunVornview(const std::vector<std::string>& arguments, const std::string& temporary,
                         int interruptAfter, int signal)
{
    const auto interrupt = [=](pid_t program) {
        if (interruptAfter > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(interruptAfter));
            kill(program, signal);
        }
    };
    return RunVornviewAnd(interrupt, arguments, temporary);
}

ViewerResult RunningViewer::Run(std::vector<std::string> arguments)
{
    return RunAndInterrupt(std::move(arguments), 0);
}

ViewerResult RunningViewer::RunAndInterrupt(std::vector<std::string> arguments, int milliseconds,
                                            int signal)
{
    for (const char* old : {"report.json", "sound.wav", "end.png"}) {
        std::filesystem::remove(folder_.Path(old));
    }
    arguments.insert(arguments.begin(),
                     {"--headless", "--report", folder_.Path("report.json"), "--wav",
                      folder_.Path("sound.wav"), "--snapshot", folder_.Path("end.png")});
    std::filesystem::create_directories(folder_.Path("tmp"));
    ViewerResult result = RunVornview(arguments, folder_.Path("tmp"), milliseconds, signal);
    result.report = nlohmann::json::parse(folder_.Read("report.json"), nullptr, false);
    const std::string wav = folder_.Read("sound.wav");
    result.wav = wav.size() < kWavHeaderSize ? "" : wav.substr(kWavHeaderSize);
    result.snapshot = folder_.Read("end.png");
    return result;
}

std::vector<std::string> RunningViewer::LeftBehind() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path("tmp"))) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

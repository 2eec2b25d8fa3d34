// SPDX-License-Identifier: MIT
#include "bench/Command.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string>

namespace
{

double SecondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

pid_t StartCommand(const Command& command)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, command[0], &actions, nullptr, command.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error(std::string(command[0]) + " cannot be started");
    }
    return process;
}

CommandUsage RunCommand(const Command& command)
{
    const auto start = std::chrono::steady_clock::now();
    int status = 0;
    rusage usage{};
    const pid_t process = StartCommand(command);
    if (wait4(process, &status, 0, &usage) != process || status != 0) {
        throw std::runtime_error(std::string(command[0]) + " failed");
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), SecondsOf(usage.ru_utime) + SecondsOf(usage.ru_stime),
            static_cast<double>(usage.ru_maxrss) / 1024};
}

Command TakeCommand(char**& at)
{
    Command command;
    while (*at != nullptr && std::string(*at) != "--") {
        command.push_back(*at++);
    }
    if (command.empty()) {
        throw std::runtime_error("a command is missing");
    }
    command.push_back(nullptr);
    at += *at != nullptr ? 1 : 0;
    return command;
}

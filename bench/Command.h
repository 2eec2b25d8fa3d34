// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <vector>

// A command as it is handed to a process: ends with a null pointer.
using Command = std::vector<char*>;

// What one run of a command took.
struct CommandUsage {
    double wallSeconds = 0;
    double processorSeconds = 0; // of all its threads, user and system
    double peakMebibytes = 0;    // resident
};

// Starts a command without input; what it says on standard output is dropped. Throws
// std::runtime_error if it cannot be started.
pid_t StartCommand(const Command& command);

// Starts a command and waits for its end. Throws std::runtime_error, also if it fails.
CommandUsage RunCommand(const Command& command);

// Takes the arguments from `at` up to "--" or the end as a command and goes past them. Throws
// std::runtime_error if there are none.
Command TakeCommand(char**& at);

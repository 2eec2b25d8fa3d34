// SPDX-License-Identifier: MIT
//
// bench_until NAME RUNS GATE FILE COMMAND... -- FILE COMMAND...
//
// The time from starting a command until it has written a file, and the processor's time in it, for
// two commands in turn; prints the medians and the first one's ratio to the second. The commands
// are ended then. Exit status 1 if the ratio of the first is above GATE, 2 if a command ends
// without the file. The processor's time hardly minds what else the machine does.
#include "bench/Command.h"
#include "bench/Medians.h"

#include <poll.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace
{

namespace fs = std::filesystem;

constexpr int kMostMilliseconds = 20000;

struct Side {
    fs::path file;
    Command command;
    std::vector<double> milliseconds;
    std::vector<double> processorMilliseconds;
};

// Tells when a file has been written and closed, or moved to where it belongs.
class FileWatch
{
public:
    explicit FileWatch(const fs::path& file)
        : name_(file.filename()), descriptor_(inotify_init1(IN_CLOEXEC))
    {
        fs::remove(file);
        if (inotify_add_watch(descriptor_, file.parent_path().c_str(),
                              IN_CLOSE_WRITE | IN_MOVED_TO) < 0) {
            throw std::runtime_error(file.parent_path().string() + " cannot be watched");
        }
    }
    ~FileWatch() { close(descriptor_); }
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    void Wait() const
    {
        pollfd waiting{descriptor_, POLLIN, 0};
        do {
            if (poll(&waiting, 1, kMostMilliseconds) <= 0) {
                throw std::runtime_error(name_.string() + " was not written");
            }
        } while (!IsAmongEvents());
    }

private:
    bool IsAmongEvents() const
    {
        alignas(inotify_event) char events[4096];
        const ssize_t length = read(descriptor_, events, sizeof events);
        for (ssize_t at = 0; at < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events + at);
            if (event->len > 0 && name_ == event->name) {
                return true;
            }
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
        return false;
    }

    fs::path name_;
    int descriptor_;
};

double MillisecondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

// The processor's time that the process took.
double End(pid_t process)
{
    rusage usage{};
    kill(process, SIGKILL);
    wait4(process, nullptr, 0, &usage);
    return MillisecondsOf(usage.ru_utime) + MillisecondsOf(usage.ru_stime);
}

void MeasureUntilWritten(Side& side)
{
    const FileWatch watch(side.file);
    const auto start = std::chrono::steady_clock::now();
    const pid_t process = StartCommand(side.command);
    try {
        watch.Wait();
    } catch (...) {
        End(process);
        throw;
    }
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    side.milliseconds.push_back(taken.count());
    side.processorMilliseconds.push_back(End(process));
}

Side TakeSide(char**& at)
{
    Command words = TakeCommand(at);
    Side side;
    side.file = fs::absolute(words.front());
    words.erase(words.begin());
    side.command = std::move(words);
    return side;
}

// Begins a line; the ratio of the two.
double Tell(const char* name, const char* quantity, double our, double their)
{
    std::printf("%-34s %-13s %8.1f %-4s against %8.1f %-4s ratio %5.2f", name, quantity, our, "ms",
                their, "ms", our / their);
    return our / their;
}

bool Compare(char** argv)
{
    const int runs = std::max(1, std::atoi(argv[2]));
    const double gate = std::atof(argv[3]);
    char** at = argv + 4;
    Side ours = TakeSide(at);
    Side theirs = TakeSide(at);
    for (int run = 0; run < runs; ++run) {
        for (Side* side : {&ours, &theirs}) {
            MeasureUntilWritten(*side);
        }
    }
    const double ratio =
        Tell(argv[1], "time", MedianOf(ours.milliseconds), MedianOf(theirs.milliseconds));
    const bool holds = ratio <= gate;
    std::printf("   gate <= %.2f  %s\n", gate, holds ? "ok" : "MISSED");
    Tell(argv[1], "processor", MedianOf(ours.processorMilliseconds),
         MedianOf(theirs.processorMilliseconds));
    std::printf("\n");
    return holds;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 9) {
        std::fprintf(stderr,
                     "usage: bench_until NAME RUNS GATE FILE COMMAND... -- FILE COMMAND...\n");
        return 2;
    }
    try {
        return Compare(argv) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_until: %s\n", failure.what());
        return 2;
    }
}

// SPDX-License-Identifier: MIT
//
// bench_until NAME RUNS GATE FILE COMMAND... -- FILE COMMAND...
//
// The time from starting a command until it has written a file, and the processor's time in it, for
// two commands in turn; prints the medians and the first one's ratio to the second. The commands
// are ended then. Exit status 1 if the ratio of the first is above GATE, 2 if a command ends
// without the file.
#include "bench/Race.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace
{

namespace fs = std::filesystem;

constexpr int kMostMilliseconds = 20000;

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

Racer TakeRacer(char**& at)
{
    Racer racer;
    racer.command = TakeCommand(at);
    const fs::path file = fs::absolute(racer.command.front());
    racer.command.erase(racer.command.begin());
    racer.watch = [file] { return [watch = std::make_shared<FileWatch>(file)] { watch->Wait(); }; };
    return racer;
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
        char** at = argv + 4;
        Racer ours = TakeRacer(at);
        Racer theirs = TakeRacer(at);
        const int runs = std::max(1, std::atoi(argv[2]));
        return Race(argv[1], runs, std::atof(argv[3]), ours, theirs) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_until: %s\n", failure.what());
        return 2;
    }
}

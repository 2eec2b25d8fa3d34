// SPDX-License-Identifier: MIT
#include "bench/Race.h"

#include "bench/Medians.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdio>

namespace
{

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

void Run(Racer& racer)
{
    const std::function<void()> wait = racer.watch();
    const auto start = std::chrono::steady_clock::now();
    const pid_t process = StartCommand(racer.command);
    try {
        wait();
    } catch (...) {
        End(process);
        throw;
    }
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    racer.milliseconds.push_back(taken.count());
    racer.processorMilliseconds.push_back(End(process));
}

// Begins a line; the ratio of the two.
double Tell(const char* name, const char* quantity, double our, double their)
{
    std::printf("%-34s %-13s %8.1f %-4s against %8.1f %-4s ratio %5.2f", name, quantity, our, "ms",
                their, "ms", our / their);
    return our / their;
}

} // namespace

bool Race(const char* name, int runs, double gate, Racer& ours, Racer& theirs)
{
    for (int run = 0; run < runs; ++run) {
        for (Racer* racer : {&ours, &theirs}) {
            Run(*racer);
        }
    }
    const double ratio =
        Tell(name, "time", MedianOf(ours.milliseconds), MedianOf(theirs.milliseconds));
    const bool holds = ratio <= gate;
    std::printf("   gate <= %.2f  %s\n", gate, holds ? "ok" : "MISSED");
    Tell(name, "processor", MedianOf(ours.processorMilliseconds),
         MedianOf(theirs.processorMilliseconds));
    std::printf("\n");
    return holds;
}

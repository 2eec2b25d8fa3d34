// SPDX-License-Identifier: MIT
//
// bench_spool BUNDLE NAME zeros|FILE MEBIBYTES RUNS GATE [GATE COMMAND...]
//
// The rate at which a movie bundle takes an object out of memory into its spool file, beside a
// plain loop that copies the same bytes in the same pieces to a file in the same folder ($TMPDIR),
// and beside a command that handles as many bytes, if one is given. All in turn; prints medians
// and the bundle's ratio to each. Exit status 1 if a ratio is below its GATE.
#include "bench/Command.h"
#include "bench/Medians.h"
#include "bench/QuietHost.h"
#include "bench/RepeatedBytes.h"
#include "toolbox/quickdraw/QuickDraw.h"
#include "toolbox/threads/Threads.h"
#include "viewer/PluginBundle.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>

namespace
{

constexpr SInt32 kChunk = 16384;
constexpr Size kStackSize = 65536;
constexpr OSType kUnknownType = FOUR_CHARS('?', '?', '?', '?');
constexpr Rect kPage = {0, 0, 480, 640};

const RepeatedBytes* gBytes;
SInt32 gSize;

OSErr CopyBytes(VornPlugin*, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                unsigned char* dataComplete)
{
    const SInt32 wanted = buffer == nullptr ? 0 : *count;
    *count = 0;
    YieldToAnyThread();
    *dataSize = gSize;
    *dataComplete = 1;
    if (wanted <= 0) {
        return 0;
    }
    *count = std::clamp(gSize - offset, 0, wanted);
    gBytes->Copy(static_cast<UInt8*>(buffer), offset, *count);
    return *count > 0 ? OSErr{0} : OSErr{kDataNotAvailableErr};
}

OSErr TellSize(VornPlugin*, SInt32* bytes)
{
    *bytes = gSize;
    return 0;
}

constexpr VornPluginHostCalls kHostCalls = {IgnoreRect, IgnoreError, IgnoreRows, CopyBytes,
                                            TellSize};

double Seconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

struct Object {
    const viewer::EntryPoints* calls = nullptr;
    VornPlugin* plugin = nullptr;
    bool isDecoded = false;
    OSErr error = 0;
};

void* Decode(void* param)
{
    auto* object = static_cast<Object*>(param);
    object->error = object->calls->decodeObject(object->plugin);
    object->isDecoded = true;
    return nullptr;
}

void Check(bool works, const char* what)
{
    if (!works) {
        throw std::runtime_error(what);
    }
}

double TimeBundle(const viewer::PluginBundle& bundle)
{
    Object object{&bundle.Calls()};
    Check(object.calls->makeNewObject(bundle.Reference(), &kHostCalls, kUnknownType, kUnknownType,
                                      "object.mpg", "video/mpeg", &object.plugin) == 0,
          "the object cannot be made");
    const double start = Seconds();
    ThreadID thread = kNoThreadID;
    Check(NewThread(kCooperativeThread, Decode, &object, kStackSize, 0, nullptr, &thread) == 0,
          "no thread");
    while (!object.isDecoded) {
        YieldToAnyThread();
    }
    const double seconds = Seconds() - start;
    object.calls->freeObject(object.plugin);
    Check(object.error == 0, "decoding failed");
    return seconds;
}

double TimePlainLoop()
{
    const char* folder = std::getenv("TMPDIR");
    const std::string path = std::string(folder != nullptr ? folder : "/tmp") + "/vorn-bench-plain";
    const double start = Seconds();
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
    Check(file >= 0, "the plain loop's file cannot be made");
    unlink(path.c_str());
    std::vector<UInt8> chunk(kChunk);
    for (SInt64 offset = 0; offset < gSize; offset += kChunk) {
        const auto count = static_cast<SInt32>(std::min<SInt64>(kChunk, gSize - offset));
        gBytes->Copy(chunk.data(), offset, count);
        Check(pwrite(file, chunk.data(), static_cast<size_t>(count), offset) == count,
              "the plain loop cannot write");
    }
    const double seconds = Seconds() - start;
    close(file);
    return seconds;
}

// Gibibytes a second.
double Rate(const std::vector<double>& seconds)
{
    return static_cast<double>(gSize) / (1 << 30) / MedianOf(seconds);
}

struct Rival {
    const char* name;
    double gate; // the least ratio
    std::function<double()> time;
    std::vector<double> seconds;
};

bool Report(const char* name, double ours, const Rival& rival)
{
    const double theirs = Rate(rival.seconds);
    const bool holds = ours / theirs >= rival.gate;
    std::printf("%-34s bundle %6.2f GiB/s   %-12s %6.2f GiB/s   ratio %5.2f   gate >= %.2f  %s\n",
                name, ours, rival.name, theirs, ours / theirs, rival.gate, holds ? "ok" : "MISSED");
    return holds;
}

bool Compare(const viewer::PluginBundle& bundle, const char* name, int runs,
             std::vector<Rival> rivals)
{
    TimePlainLoop(); // the machine's first touch of so much memory is on nobody's account
    std::vector<double> ours;
    for (int run = 0; run < runs; ++run) {
        ours.push_back(TimeBundle(bundle));
        for (Rival& rival : rivals) {
            rival.seconds.push_back(rival.time());
        }
    }
    bool holds = true;
    for (const Rival& rival : rivals) {
        holds = Report(name, Rate(ours), rival) && holds;
    }
    return holds;
}

bool Run(int argc, char** argv)
{
    const viewer::PluginBundle bundle(argv[1]);
    const RepeatedBytes bytes = LoadBytes(argv[3]);
    const SInt64 size = std::atoll(argv[4]) << 20;
    const int runs = std::atoi(argv[5]);
    Check(size > 0 && size <= INT32_MAX && runs > 0, "sizes are 1 to 2047 MiB, runs 1 or more");
    gBytes = &bytes;
    gSize = static_cast<SInt32>(size);
    CGrafPtr port = nullptr;
    Check(CreateWindowPort(&kPage, &port) == 0, "no port");
    SetPort(port);
    std::vector<Rival> rivals{{"plain loop", std::atof(argv[6]), TimePlainLoop, {}}};
    if (argc > 8) {
        char** at = argv + 8;
        const Command command = TakeCommand(at);
        const auto time = [command] { return RunCommand(command).wallSeconds; };
        rivals.push_back({"the command", std::atof(argv[7]), time, {}});
    }
    return Compare(bundle, argv[2], runs, rivals);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 7 || argc == 8) {
        std::fprintf(stderr, "usage: bench_spool BUNDLE NAME zeros|FILE MEBIBYTES RUNS GATE "
                             "[GATE COMMAND...]\n");
        return 2;
    }
    try {
        return Run(argc, argv) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_spool: %s\n", failure.what());
        return 2;
    }
}

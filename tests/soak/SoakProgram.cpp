// SPDX-License-Identifier: MIT
//
// soak [SECONDS] [OBJECTS...]: runs a page of so many objects, which come and go, for so many
// seconds of its own clock (3600), for each number (10 100 1000), and prints what it costs. Exit
// status 1 if something was left behind or memory grew.
#include "tests/soak/ProcessState.h"
#include "tests/soak/SoakMaterials.h"
#include "viewer/FileLimit.h"
#include "viewer/QuietOutput.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

constexpr SInt64 kStep = 100'000;
constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
constexpr int kParts = 6;
// What may come and go between two looks at a page of the same number of objects.
constexpr double kMostGrowth = 1.1;

double Mebibytes(size_t bytes)
{
    return static_cast<double>(bytes) / (1 << 20);
}

// Answers whether memory stayed level: after the first part no later one is much above it.
bool RunOnce(const viewer::PluginFolder& plugins, size_t objects, SInt64 seconds)
{
    const ProcessState before = ProcessState::Now();
    SoakPage page(plugins, MakeSoakMaterials(), 1, objects);
    std::fprintf(stderr, "\n%zu objects, %lld s of the page's clock\n", objects,
                 static_cast<long long>(seconds));
    std::fprintf(stderr, "%10s %8s %8s %10s %10s %12s %16s\n", "until s", "gone", "shown",
                 "heap MiB", "RSS MiB", "descriptors", "ms CPU/object/s");
    size_t settledHeap = 0;
    bool isLevel = true;
    for (int part = 1; part <= kParts; ++part) {
        const ProcessState from = ProcessState::Now();
        const SInt64 end = seconds * kMicrosecondsPerSecond * part / kParts;
        const SInt64 start = page.Now();
        while (page.Now() < end) {
            page.Round(kStep, true);
        }
        const ProcessState now = ProcessState::Now();
        const double lasted =
            static_cast<double>(page.Now() - start) / static_cast<double>(kMicrosecondsPerSecond);
        std::fprintf(stderr, "%10lld %8d %8d %10.1f %10.1f %12zu %16.4f\n",
                     static_cast<long long>(page.Now() / kMicrosecondsPerSecond), page.Gone(),
                     page.Shown(), Mebibytes(now.heapBytes), Mebibytes(now.residentBytes),
                     now.descriptors,
                     1000 * (now.processorSeconds - from.processorSeconds) /
                         static_cast<double>(objects) / lasted);
        settledHeap = part == 2 ? now.heapBytes : settledHeap;
        isLevel = isLevel && (part < 3 || static_cast<double>(now.heapBytes) <=
                                              static_cast<double>(settledHeap) * kMostGrowth);
    }
    page.RemoveAll();
    const ProcessState after = ProcessState::Now();
    const bool isClean = after.descriptors <= before.descriptors + 1; // the temporary folder's
    std::fprintf(stderr, "all gone: heap %.1f MiB, %zu descriptors (%zu before)%s%s\n",
                 Mebibytes(after.heapBytes), after.descriptors, before.descriptors,
                 isClean ? "" : "; DESCRIPTORS ARE LEFT", isLevel ? "" : "; MEMORY GREW");
    return isClean && isLevel;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const viewer::QuietOutput quiet;
        viewer::AllowManyFiles();
        const viewer::PluginFolder plugins(VORN_PLUGINS);
        const SInt64 seconds = argc > 1 ? std::atoll(argv[1]) : 3600;
        std::vector<size_t> numbers = {10, 100, 1000};
        if (argc > 2) {
            numbers.clear();
        }
        for (int i = 2; i < argc; ++i) {
            numbers.push_back(static_cast<size_t>(std::atoll(argv[i])));
        }
        bool isWell = true;
        for (const size_t objects : numbers) {
            isWell = RunOnce(plugins, objects, seconds) && isWell;
        }
        return isWell ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "soak: %s\n", problem.what());
        return 1;
    }
}

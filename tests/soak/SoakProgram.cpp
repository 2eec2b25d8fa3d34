// SPDX-License-Identifier: MIT
//
// soak [SECONDS] [OBJECTS...]: runs a page of so many objects, which come and go, for so many
// seconds of its own clock (3600), for each number (10 100 1000), and prints what it costs. Exit
// status 1 if something was left behind or memory grew.
#include "tests/soak/ProcessState.h"
#include "tests/soak/SoakMaterials.h"
#include "viewer/FileLimit.h"
#include "viewer/QuietOutput.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace
{

constexpr SInt64 kStep = 100'000;
constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
constexpr int kParts = 6;
constexpr int kRoundsBetweenLooks = 10;
// How much more the second half of the time may need at its peak than the first: which objects are
// there is left to chance.
constexpr double kMostGrowth = 1.1;

double Mebibytes(size_t bytes)
{
    return static_cast<double>(bytes) / (1 << 20);
}

void RunFor(SoakPage& page, SInt64 microseconds, size_t& peakHeap)
{
    const SInt64 end = page.Now() + microseconds;
    for (int round = 0; page.Now() < end; ++round) {
        page.Round(kStep, true);
        peakHeap = round % kRoundsBetweenLooks == 0 ? std::max(peakHeap, HeapBytes()) : peakHeap;
    }
}

void PrintPart(const SoakPage& page, size_t objects, SInt64 microseconds, double processorSeconds)
{
    const ProcessState now = ProcessState::Now();
    const double objectSeconds = static_cast<double>(objects) * static_cast<double>(microseconds) /
                                 static_cast<double>(kMicrosecondsPerSecond);
    std::fprintf(stderr, "%10lld %8d %8d %10.1f %10.1f %12zu %16.4f\n",
                 static_cast<long long>(page.Now() / kMicrosecondsPerSecond), page.Gone(),
                 page.Shown(), Mebibytes(now.heapBytes), Mebibytes(now.residentBytes),
                 now.descriptors, 1000 * (now.processorSeconds - processorSeconds) / objectSeconds);
}

using Peaks = std::array<size_t, 2>; // of the halves

Peaks RunAndRemove(const viewer::PluginFolder& plugins, const std::vector<SoakMaterial>& materials,
                   size_t objects, SInt64 microseconds, bool prints)
{
    Peaks peaks{};
    SoakPage page(plugins, materials, 1, objects);
    for (int part = 0; part < kParts; ++part) {
        const double before = ProcessState::Now().processorSeconds;
        RunFor(page, microseconds / kParts, peaks.at(part < kParts / 2 ? 0 : 1));
        if (prints) {
            PrintPart(page, objects, microseconds / kParts, before);
        }
    }
    page.RemoveAll();
    return peaks;
}

// Answers whether memory stayed level and nothing was left behind.
bool Soak(const viewer::PluginFolder& plugins, const std::vector<SoakMaterial>& materials,
          size_t objects, SInt64 seconds)
{
    std::fprintf(stderr, "\n%zu objects, %lld s of the page's clock\n", objects,
                 static_cast<long long>(seconds));
    std::fprintf(stderr, "%10s %8s %8s %10s %10s %12s %16s\n", "until s", "gone", "shown",
                 "heap MiB", "RSS MiB", "descriptors", "ms CPU/object/s");
    const ProcessState before = ProcessState::Now();
    const Peaks peaks =
        RunAndRemove(plugins, materials, objects, seconds * kMicrosecondsPerSecond, true);
    const ProcessState after = ProcessState::Now();
    const bool isClean = after.descriptors == before.descriptors && after.live == before.live;
    const bool isLevel =
        static_cast<double>(peaks[1]) <= static_cast<double>(peaks[0]) * kMostGrowth;
    std::fprintf(
        stderr,
        "peak heap of the halves %.1f and %.1f MiB; all gone: heap %.1f MiB (%.1f before), "
        "%zu descriptors (%zu before)%s%s\n",
        Mebibytes(peaks[0]), Mebibytes(peaks[1]), Mebibytes(after.heapBytes),
        Mebibytes(before.heapBytes), after.descriptors, before.descriptors,
        isClean ? "" : "; SOMETHING IS LEFT", isLevel ? "" : "; MEMORY GREW");
    return isClean && isLevel;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const viewer::QuietOutput quiet;
        viewer::AllowManyFiles();
        const viewer::PluginFolder plugins(VORN_PLUGINS);
        const std::vector<SoakMaterial> materials = MakeSoakMaterials();
        // What is made once and kept is there before anything is counted.
        RunAndRemove(plugins, materials, 20, 60 * kMicrosecondsPerSecond, false);
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
            isWell = Soak(plugins, materials, objects, seconds) && isWell;
        }
        return isWell ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "soak: %s\n", problem.what());
        return 1;
    }
}

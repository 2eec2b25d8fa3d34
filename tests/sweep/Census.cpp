// SPDX-License-Identifier: MIT
#include "tests/sweep/Census.h"

#include "toolbox/probe/Probe.h"

#include <array>
#include <filesystem>

namespace sweep
{
namespace
{

namespace fs = std::filesystem;

constexpr std::array<const char*, kLiveObjectKinds> kKindNames = {"handles",
                                                                  "pointers",
                                                                  "open files",
                                                                  "threads",
                                                                  "component instances",
                                                                  "foundation objects",
                                                                  "ports",
                                                                  "graphics worlds",
                                                                  "regions",
                                                                  "movies",
                                                                  "controllers",
                                                                  "drags"};

int CountEntries(const fs::path& folder)
{
    std::error_code error;
    int count = 0;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        ++count;
    }
    return count;
}

// The process keeps its temporary folder open from its first file on. Empty before.
fs::path FindSpoolFolder()
{
    std::error_code error;
    for (fs::directory_iterator entry("/proc/self/fd", error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unreadable;
        const fs::path target = fs::read_symlink(entry->path(), unreadable);
        if (target.filename().string().starts_with("vorn-spool-")) {
            return target;
        }
    }
    return {};
}

const fs::path& SpoolFolder()
{
    static fs::path folder;
    if (folder.empty()) {
        folder = FindSpoolFolder();
    }
    return folder;
}

} // namespace

Census TakeCensus()
{
    Census census;
    for (SInt32 kind = 0; kind < kLiveObjectKinds; ++kind) {
        census[kKindNames.at(static_cast<size_t>(kind))] = CountLiveObjects(kind);
    }
    census["descriptors"] = CountEntries("/proc/self/fd");
    const fs::path& folder = SpoolFolder();
    census["spool files"] = folder.empty() ? 0 : CountEntries(folder);
    return census;
}

void RemoveSpoolFiles()
{
    const fs::path& folder = SpoolFolder();
    if (!folder.empty()) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            fs::remove(entry.path());
        }
    }
}

Census Difference(const Census& before, const Census& after)
{
    Census difference;
    for (const auto& [kind, count] : after) {
        if (count != before.at(kind)) {
            difference[kind] = count - before.at(kind);
        }
    }
    return difference;
}

} // namespace sweep

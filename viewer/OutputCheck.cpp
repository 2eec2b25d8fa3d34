// SPDX-License-Identifier: MIT
#include "viewer/OutputCheck.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace viewer
{
namespace
{

// False if there is no such file, or if it is none that could be overwritten.
bool FindFile(const std::string& path, int standardStream, struct stat& status)
{
    const int result = path == "-" ? fstat(standardStream, &status) : stat(path.c_str(), &status);
    return result == 0 && S_ISREG(status.st_mode);
}

void RefuseIfObject(const char* option, const std::string& path, const Options& options)
{
    struct stat output {
    };
    if (!FindFile(path, STDOUT_FILENO, output)) {
        return;
    }
    for (const ObjectRequest& object : options.objects) {
        struct stat input {
        };
        if (FindFile(object.location, STDIN_FILENO, input) && input.st_dev == output.st_dev &&
            input.st_ino == output.st_ino) {
            throw UsageError(std::string(option) + ": '" + path + "' is also the object '" +
                             object.location + "'");
        }
    }
}

struct Output {
    const char* option;
    std::string path;
};

std::vector<Output> OutputsOf(const Options& options)
{
    std::vector<Output> outputs;
    for (const SnapshotRequest& snapshot : options.snapshots) {
        outputs.push_back({"--snapshot", snapshot.path});
    }
    for (const Output& output :
         {Output{"--wav", options.wavPath}, Output{"--report", options.reportPath},
          Output{"--drag", options.drag.path}, Output{"--drag-image", options.drag.imagePath}}) {
        if (!output.path.empty()) {
            outputs.push_back(output);
        }
    }
    return outputs;
}

// Devices and pipes take any number of outputs, one after the other.
bool IsOneFile(const Output& one, const Output& other)
{
    std::error_code ignored;
    if (std::filesystem::is_other(one.path, ignored)) {
        return false;
    }
    return std::filesystem::weakly_canonical(one.path, ignored) ==
           std::filesystem::weakly_canonical(other.path, ignored);
}

void RefuseIfWrittenTwice(const std::vector<Output>& outputs)
{
    for (auto one = outputs.begin(); one != outputs.end(); ++one) {
        const auto other =
            std::find_if(outputs.begin(), one, [&](const Output& o) { return IsOneFile(o, *one); });
        if (other != one) {
            throw UsageError(std::string(one->option) + ": '" + one->path +
                             "' is also written by " + other->option);
        }
    }
}

} // namespace

void RefuseOutputsThatMeet(const Options& options)
{
    const std::vector<Output> outputs = OutputsOf(options);
    for (const Output& output : outputs) {
        RefuseIfObject(output.option, output.path, options);
    }
    RefuseIfWrittenTwice(outputs);
}

} // namespace viewer

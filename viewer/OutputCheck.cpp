// SPDX-License-Identifier: MIT
#include "viewer/OutputCheck.h"

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

} // namespace

void RefuseOutputsThatAreObjects(const Options& options)
{
    for (const SnapshotRequest& snapshot : options.snapshots) {
        RefuseIfObject("--snapshot", snapshot.path, options);
    }
    for (const auto& [option, path] :
         {std::pair("--wav", options.wavPath), std::pair("--report", options.reportPath),
          std::pair("--drag", options.drag.path),
          std::pair("--drag-image", options.drag.imagePath)}) {
        if (!path.empty()) {
            RefuseIfObject(option, path, options);
        }
    }
}

} // namespace viewer

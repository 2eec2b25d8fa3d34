// SPDX-License-Identifier: MIT
#include "viewer/TemporaryPlace.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace viewer
{
namespace
{

// 0 for a folder in which files can be made.
int ProblemWith(const std::string& folder)
{
    struct stat status {
    };
    if (stat(folder.c_str(), &status) != 0) {
        return errno;
    }
    if (!S_ISDIR(status.st_mode)) {
        return ENOTDIR;
    }
    return access(folder.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

} // namespace

std::string TemporaryPlace()
{
    const char* const folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

void RequireTemporaryPlace()
{
    const std::string folder = TemporaryPlace();
    if (const int problem = ProblemWith(folder); problem != 0) {
        throw std::runtime_error("the folder for temporary files '" + folder +
                                 "' (TMPDIR) cannot be used: " + std::strerror(problem));
    }
}

} // namespace viewer

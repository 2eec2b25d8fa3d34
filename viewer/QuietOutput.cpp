// SPDX-License-Identifier: MIT
#include "viewer/QuietOutput.h"

#include <cstdio>
#include <fcntl.h>

namespace viewer
{

QuietOutput::QuietOutput() : former_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3))
{
    std::fflush(stdout);
    const FileDescriptor nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
    dup2(nowhere.Get(), STDOUT_FILENO);
}

QuietOutput::~QuietOutput()
{
    std::fflush(stdout);
    if (former_.IsOpen()) {
        dup2(former_.Get(), STDOUT_FILENO);
    }
}

} // namespace viewer

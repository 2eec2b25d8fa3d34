// SPDX-License-Identifier: MIT
#include "viewer/FileLimit.h"

#include <sys/resource.h>

namespace viewer
{

void AllowManyFiles()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit); // else what does not fit is told when it is opened
    }
}

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/StopRequest.h"
#include "viewer/Viewer.h"

#include <csignal>
#include <initializer_list>

namespace
{

// The first signal ends the page in good order, a second one the process.
void StopInGoodOrder(int number)
{
    viewer::AskToStop();
    std::signal(number, SIG_DFL);
}

// Whoever started the program may have decided that a signal is not for it, as nohup does.
void HandleUnlessIgnored(int number)
{
    if (std::signal(number, SIG_IGN) != SIG_IGN) {
        std::signal(number, StopInGoodOrder);
    }
}

} // namespace

int main(int argc, char** argv)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        HandleUnlessIgnored(number);
    }
    // An output that nobody reads, or that grows too large, is told like any other failure.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return viewer::RunViewer(argc, argv);
}

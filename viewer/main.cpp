// SPDX-License-Identifier: MIT
#include "viewer/HeadlessRun.h"
#include "viewer/Viewer.h"

#include <csignal>

namespace
{

// The first signal ends the page in good order, a second one the process.
void StopInGoodOrder(int number)
{
    viewer::HeadlessRun::AskToStop();
    std::signal(number, SIG_DFL);
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGINT, StopInGoodOrder);
    std::signal(SIGTERM, StopInGoodOrder);
    return viewer::RunViewer(argc, argv);
}

// SPDX-License-Identifier: MIT
#include "viewer/window/WindowPart.h"

#include "viewer/window/WindowRun.h"

void VornRunInWindow(const viewer::Options& options, const viewer::PluginFolder& plugins,
                     viewer::PageReport& report, bool& outputFailed)
{
    viewer::WindowRun run(options, plugins);
    report = run.Run();
    outputFailed = run.OutputFailed();
}

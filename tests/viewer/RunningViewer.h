// SPDX-License-Identifier: MIT
//
// Runs the built program, as a user does.
#pragma once

#include "tests/viewer/TestFiles.h"

#include <csignal>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/types.h>
#include <vector>

struct ViewerResult {
    int status = -1; // exit status, -1 for a death by signal
    std::string out;
    std::string err;
    nlohmann::json report; // null if none was written
    std::string wav;       // the samples, without the header
    std::string snapshot;  // of the end: the PNG file

    const nlohmann::json& Object(size_t index = 0) const { return report["objects"][index]; }
};

// Runs "vornview --headless" with these arguments, with report, sound and a snapshot of the end
// written to a folder of the test's. Its TMPDIR is a folder of its own.
class RunningViewer
{
public:
    ViewerResult Run(std::vector<std::string> arguments);
    // The same, but sends it a signal after that time.
    ViewerResult RunAndInterrupt(std::vector<std::string> arguments, int milliseconds,
                                 int signal = SIGINT);
    // What runs have left in their TMPDIR.
    std::vector<std::string> LeftBehind() const;
    const TestFolder& Folder() const { return folder_; }

private:
    TestFolder folder_;
};

// The program with just these arguments; `meanwhile` is called while it runs.
ViewerResult RunVornviewAnd(const std::function<void(pid_t program)>& meanwhile,
                            const std::vector<std::string>& arguments,
                            const std::string& temporary);
// It gets the signal after `interruptAfter` milliseconds, if that is not 0.
ViewerResult RunVornview(const std::vector<std::string>& arguments, const std::string& temporary,
                         int interruptAfter = 0, int signal = SIGINT);

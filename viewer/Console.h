// SPDX-License-Identifier: MIT
//
// What the viewer says to its user, all on standard error: standard output is the bundles'.
#pragma once

#include "toolbox/Types.h"

#include <string>

namespace viewer
{

class Console
{
public:
    // "vornview: NAME: TEXT", or without a name; the name "-" is standard input's.
    static void Tell(const std::string& name, const std::string& text);
    // Whether to call ShowProgress: on a terminal only, a few times a second at most.
    static bool IsProgressDue();
    // Shows one line that replaces itself.
    static void ShowProgress(const std::string& line);
    static void ClearProgress();
};

// What a result code means to a user, with its number.
std::string DescribeError(OSErr error);
// The same without its number.
const char* MeaningOf(OSErr error);

} // namespace viewer

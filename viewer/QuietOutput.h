// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/FileDescriptor.h"

namespace viewer
{

// While it exists, what anyone writes to standard output goes nowhere.
class QuietOutput
{
public:
    QuietOutput();
    ~QuietOutput();
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    FileDescriptor former_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
#pragma once

namespace viewer
{

// The program. Answers its exit status: 0 every object showed or played something, 1 one did not
// or an output could not be written, 2 the command line made no sense.
int RunViewer(int argc, char* const* argv);

} // namespace viewer

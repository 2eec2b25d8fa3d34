// SPDX-License-Identifier: MIT
#pragma once

namespace viewer
{

// Lets the process have as many files open as it may ask for: each object of a page has one.
void AllowManyFiles();

} // namespace viewer

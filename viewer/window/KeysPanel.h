// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/window/PageWindow.h"

namespace viewer
{

// What the keys do, to be shown over the page. In a window with little room lines are broken and
// writing becomes smaller, so that all of it can be read.
PageWindow::Panel MakeKeysPanel(AreaSize window);

} // namespace viewer

// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/window/PageWindow.h"

namespace viewer
{

// What the keys do, to be shown over the page.
PageWindow::Panel MakeKeysPanel();

} // namespace viewer

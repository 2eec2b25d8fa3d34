// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sweep/Scenario.h"

namespace sweep
{

// A transparent picture, shown row by row as it arrives and then as a whole.
std::unique_ptr<Scenario> StillImage();
// An animation with every way of disposal, idled to its end and clicked on.
std::unique_ptr<Scenario> AnimatedImage();
// An animation that is cut off in its second picture.
std::unique_ptr<Scenario> DamagedImage();
// A picture too large to be dragged as it is: the drag, and the picture that it promises.
std::unique_ptr<Scenario> DraggedImage();
// Which bundle can show what, asked by type, by extension and by first bytes.
std::unique_ptr<Scenario> TypeCheck();

} // namespace sweep

// SPDX-License-Identifier: MIT
//
// What drawing tells the picture that is being recorded.
#pragma once

#include "toolbox/quickdraw/Copying.h"

namespace toolbox
{

// Whether drawing into that port is recorded instead of done.
bool IsRecording(const CGrafPort* port);

// Records a copy of `from` (in the source's coordinates) to `to` (in the port's).
void RecordCopy(const PixMap& source, const Rect& from, const Rect& to, SInt16 mode);

} // namespace toolbox

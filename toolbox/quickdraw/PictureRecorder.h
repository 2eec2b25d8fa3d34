// SPDX-License-Identifier: MIT
//
// What drawing tells the picture that is being recorded.
#pragma once

#include "toolbox/quickdraw/Copying.h"

namespace toolbox
{

// Whether drawing into that port is recorded instead of done. Null is no port.
bool IsRecording(const CGrafPort* port);

// Records a copy of `from` (in the source's coordinates) to `to` (in the port's) into the picture
// that is open in the port, limited to `maskRgn` (port's coordinates; null: no limit).
void RecordCopy(CGrafPort& port, const PixMap& source, const Rect& from, const Rect& to,
                SInt16 mode, RgnHandle maskRgn);

} // namespace toolbox

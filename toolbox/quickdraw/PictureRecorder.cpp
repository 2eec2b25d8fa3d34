// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PictureRecorder.h"

namespace toolbox
{

// No picture can be opened in a port yet.
bool IsRecording(const CGrafPort* /*port*/)
{
    return false;
}

void RecordCopy(CGrafPort& /*port*/, const PixMap& /*source*/, const Rect& /*from*/,
                const Rect& /*to*/, SInt16 /*mode*/, RgnHandle /*maskRgn*/)
{
}

} // namespace toolbox

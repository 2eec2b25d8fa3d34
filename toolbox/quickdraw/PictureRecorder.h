// SPDX-License-Identifier: MIT
//
// What drawing tells the picture that is being recorded.
#pragma once

#include "toolbox/quickdraw/Copying.h"
#include "toolbox/quickdraw/PictureBytes.h"
#include "toolbox/quickdraw/Pictures.h"
#include "toolbox/quickdraw/Region.h"

#include <memory>

namespace toolbox
{

// The picture that is open in a port. Until it is finished, its handle holds a picture with an
// empty frame; it stays so if memory runs out.
class PictureRecorder
{
public:
    // Null without memory.
    static std::unique_ptr<PictureRecorder> Begin(const Rect& frame);

    PicHandle ThePicture() const { return reinterpret_cast<PicHandle>(bytes_.TheHandle()); }
    // Draws no further than this, within the frame, from now on.
    void ClipTo(const pixman_region32_t& clip);
    // Tints what is copied, from now on. Black and white, which leave it as it is, at first.
    void TintWith(const RGBColor& foreground, const RGBColor& background);
    // The source has one of the depths that there are.
    void AddCopy(const PixMap& source, const Rect& from, const Rect& to, SInt16 mode,
                 RgnHandle maskRgn);
    // Nothing is added after this.
    void Finish();

private:
    PictureRecorder(Handle handle, const Rect& frame);

    void AddPart(const PixMap& map, const Rect& part, const Rect& place, SInt16 mode,
                 RgnHandle maskRgn);

    PictureBytes bytes_;
    Rect frame_;
    bool hasClip_ = false;
    MacRegion clip_; // the one told last
    RGBColor foreground_ = {0, 0, 0};
    RGBColor background_ = {0xFFFF, 0xFFFF, 0xFFFF};
};

// Whether drawing into that port is recorded instead of done. Null is no port.
bool IsRecording(const CGrafPort* port);

// Records a copy of `from` (in the source's coordinates) to `to` (in the port's) into the picture
// that is open in the port, limited to `maskRgn` (port's coordinates; null: no limit).
void RecordCopy(CGrafPort& port, const PixMap& source, const Rect& from, const Rect& to,
                SInt16 mode, RgnHandle maskRgn);

} // namespace toolbox

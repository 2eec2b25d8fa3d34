// SPDX-License-Identifier: MIT
#include "decoders/common/IndexedCanvas.h"

#include "src/image/ImageFunctions.h"
#include "toolbox/Errors.h"

#include <algorithm>

namespace
{

constexpr UInt16 kDepth = 8;
constexpr UInt16 kMaskDepth = 1;
constexpr SInt32 kMaxFrames = 0x7FFF;

} // namespace

void IndexedCanvas::SetSize(SInt32 width, SInt32 height)
{
    width_ = width;
    height_ = height;
    if (width == 0 || height == 0)
        return;
    if (!budget_.Allows(static_cast<UInt64>(width), static_cast<UInt64>(height), kDepth,
                        kMaskDepth))
        throw OSErr{memFullErr};
    const Rect bounds = {0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)};
    SetObjectDisplayRect(&image_, &bounds);
}

void IndexedCanvas::EnlargeFor(const Place& picture)
{
    const SInt32 right = picture.left + picture.width;
    const SInt32 bottom = picture.top + picture.height;
    if (right > width_ || bottom > height_)
        SetSize(std::max(right, width_), std::max(bottom, height_));
}

Rect IndexedCanvas::Visible(const Place& picture) const
{
    const auto x = [this](SInt32 h) { return static_cast<SInt16>(std::min(h, width_)); };
    const auto y = [this](SInt32 v) { return static_cast<SInt16>(std::min(v, height_)); };
    return {y(picture.top), x(picture.left), y(picture.top + picture.height),
            x(picture.left + picture.width)};
}

IndexedCanvas::Frame IndexedCanvas::AddFrame(const Place& picture, CTabHandle colors,
                                             bool wantsMask)
{
    const bool isFirst = frameCount_ == 0;
    if (isFirst)
        EnlargeFor(picture);
    if (width_ == 0 || height_ == 0)
        throw OSErr{kVornErrRenderFailed};
    Frame frame = {-1, Visible(picture)};
    Rect place = frame.target;
    if (frame.IsEmpty()) {
        frame.target = {};
        place = {0, 0, 1, 1}; // one pixel: nothing is seen of it, but it takes its time
    }
    if (isFirst)
        place = {0, 0, static_cast<SInt16>(height_), static_cast<SInt16>(width_)};
    frame.index = AddFrameAt(place, colors, wantsMask || isFirst || frame.IsEmpty());
    OffsetRect(&frame.target, static_cast<SInt16>(-place.left), static_cast<SInt16>(-place.top));
    return frame;
}

SInt16 IndexedCanvas::AddFrameAt(const Rect& place, CTabHandle colors, bool hasMask)
{
    const Rect bounds = {0, 0, static_cast<SInt16>(place.bottom - place.top),
                         static_cast<SInt16>(place.right - place.left)};
    // The mask is counted in any case: a frame that lacks rows gets one later.
    budget_.Take(static_cast<UInt64>(bounds.right), static_cast<UInt64>(bounds.bottom), kDepth,
                 kMaskDepth);
    if (frameCount_ == kMaxFrames)
        throw OSErr{memFullErr};
    SInt16 index = -1;
    const OSErr err =
        AddNewFrame(&image_, &bounds, kDepth, colors, hasMask ? kMaskDepth : UInt16{0}, &index);
    if (err != noErr)
        throw err;
    ++frameCount_;
    SetFrameDisplayPos(&image_, index, {place.top, place.left});
    return index;
}

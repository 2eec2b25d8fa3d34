// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/FrameBudget.h"
#include "src/plugin/VornPluginABI.h"

// What the pictures of an animated image of indices are placed on to become its frames.
//
// The first frame is the whole canvas, so that it can be shown while it arrives; each of the others
// has the size of what it changes. A first picture that reaches beyond the canvas enlarges it, as
// in browsers; later ones are cut off at its edges.
class IndexedCanvas
{
public:
    // Where a picture lies; no side is less than 0.
    struct Place {
        SInt32 left;
        SInt32 top;
        SInt32 width;
        SInt32 height;
    };
    struct Frame {
        SInt16 index;
        // What the picture fills of the frame, in the frame's coordinates. Nothing if nothing can
        // be seen of it; the frame is then a transparent one, and should be left in place.
        Rect target;

        bool IsEmpty() const { return target.right <= target.left || target.bottom <= target.top; }
    };

    explicit IndexedCanvas(VornPlugin& image) : image_(image) {}

    // Tells the host the size; one of nothing is left to the first picture. Throws memFullErr if
    // it is too large.
    void SetSize(SInt32 width, SInt32 height);
    // Adds a frame for a picture and places it; with a mask also where the picture does not want
    // one but leaves a part of the frame free. Throws memFullErr where it is too large, and
    // kVornErrRenderFailed where it and the canvas are both nothing.
    Frame AddFrame(const Place& picture, CTabHandle colors, bool wantsMask);
    SInt32 FrameCount() const { return frameCount_; }

private:
    void EnlargeFor(const Place& picture);
    Rect Visible(const Place& picture) const;
    SInt16 AddFrameAt(const Rect& place, CTabHandle colors, bool hasMask);

    VornPlugin& image_;
    FrameBudget budget_;
    SInt32 width_ = 0;
    SInt32 height_ = 0;
    SInt32 frameCount_ = 0;
};

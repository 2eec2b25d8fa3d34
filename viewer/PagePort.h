// SPDX-License-Identifier: MIT
//
// The port that a page draws in, and where its pixels have changed since somebody looked.
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"
#include "viewer/PageChanges.h"

#include <vector>

namespace viewer
{

// Nobody else takes the port's dirty region: it holds what the platform's operations drew. What is
// drawn past them, into the pixels, is noted here alone.
class PagePort
{
public:
    // Current from then on. Throws std::runtime_error if there is no memory for it.
    PagePort(SInt16 width, SInt16 height);
    ~PagePort();
    PagePort(const PagePort&) = delete;
    PagePort& operator=(const PagePort&) = delete;

    CGrafPtr Get() const { return port_; }
    Rect Bounds() const;
    // False if there is no memory for more: it stays as it is. What is new has no contents yet.
    bool Resize(const Rect& bounds);

    // Makes it current for what an object draws in that part of it.
    void Prepare(const Rect& clip);
    // Whether something was drawn since then; that part counts as changed if so.
    bool TakeDrawing(const Rect& clip);
    // Notes what was drawn without being prepared for: movies also draw while threads run. To be
    // called before Prepare, so that it is not taken for the object's.
    void NoteOtherDrawing();

    // One grey, within the bounds.
    void Fill(const Rect& rect, UInt8 grey);
    // Its pixels (GetPortPixels), of which that part counts as changed.
    UInt8* PixelsToDraw(const Rect& changed, SInt32& rowBytes);
    // Where it has changed since the last call, as rectangles that may overlap.
    std::vector<Rect> TakeChanges();

private:
    CGrafPtr port_ = nullptr;
    RgnHandle clip_ = nullptr;
    RgnHandle dirty_ = nullptr;
    PageChanges changes_;
};

} // namespace viewer

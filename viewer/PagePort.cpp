// SPDX-License-Identifier: MIT
#include "viewer/PagePort.h"

#include "toolbox/Errors.h"
#include "viewer/Rects.h"

#include <cstring>
#include <stdexcept>

namespace viewer
{
namespace
{

constexpr SInt32 kBytesPerPixel = 4;

} // namespace

PagePort::PagePort(SInt16 width, SInt16 height) : clip_(NewRgn()), dirty_(NewRgn())
{
    const Rect bounds = {0, 0, height, width};
    if (clip_ == nullptr || dirty_ == nullptr || CreateWindowPort(&bounds, &port_) != noErr) {
        DisposeRgn(clip_);
        DisposeRgn(dirty_);
        throw std::runtime_error("there is not enough memory for a page of that size");
    }
    SetPort(port_);
}

PagePort::~PagePort()
{
    DisposeWindowPort(port_);
    DisposeRgn(clip_);
    DisposeRgn(dirty_);
}

Rect PagePort::Bounds() const
{
    Rect bounds{};
    return *GetPortBounds(port_, &bounds);
}

bool PagePort::Resize(const Rect& bounds)
{
    return ResizeWindowPort(port_, &bounds) == noErr;
}

void PagePort::Prepare(const Rect& clip)
{
    SetPort(port_);
    RectRgn(clip_, &clip);
    SetClip(clip_);
    ForeColor(blackColor);
    BackColor(whiteColor);
}

bool PagePort::TakeDrawing(const Rect& clip)
{
    if (TakeDirtyRegion(port_, nullptr) == 0) {
        return false;
    }
    changes_.Add(clip);
    return true;
}

void PagePort::NoteOtherDrawing()
{
    if (TakeDirtyRegion(port_, dirty_) == 0) {
        return;
    }
    const SInt32 count = CountRegionRects(dirty_);
    for (SInt32 i = 0; i < count; ++i) {
        changes_.Add(GetRegionRect(dirty_, i));
    }
}

void PagePort::Fill(const Rect& rect, UInt8 grey)
{
    const Rect visible = Intersection(rect, Bounds());
    SInt32 rowBytes = 0;
    UInt8* const pixels = GetPortPixels(port_, &rowBytes);
    for (SInt32 v = visible.top; v < visible.bottom && visible.left < visible.right; ++v) {
        std::memset(pixels + static_cast<ptrdiff_t>(v) * rowBytes +
                        ptrdiff_t{visible.left} * kBytesPerPixel,
                    grey, static_cast<size_t>(visible.right - visible.left) * kBytesPerPixel);
    }
    changes_.Add(visible);
}

UInt8* PagePort::PixelsToDraw(const Rect& changed, SInt32& rowBytes)
{
    changes_.Add(changed);
    return GetPortPixels(port_, &rowBytes);
}

std::vector<Rect> PagePort::TakeChanges()
{
    NoteOtherDrawing();
    return changes_.Take();
}

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/window/WindowFit.h"

#include <algorithm>
#include <cmath>

namespace viewer
{
namespace
{

constexpr double kLeastZoom = 0.25;
constexpr double kMostZoom = 8;

} // namespace

void WindowFit::Open(AreaSize asked, Page::Single single, double zoom)
{
    Page::Shape shape = page_.CurrentShape();
    shape.zoom = zoom;
    shape.single = single;
    ownSize_ = asked;
    Follow(shape);
}

bool WindowFit::TakeWindowSize()
{
    return Follow(page_.CurrentShape());
}

// A window that comes back from the full screen has the size that it had before.
bool WindowFit::Follow(Page::Shape shape)
{
    const bool isOther = TakeSize(shape);
    if (shape.alone == nullptr &&
        (shape.width != ownSize_.width || shape.height != ownSize_.height)) {
        ownSize_ = {shape.width, shape.height};
        shape.single = follows_ ? Page::Single::kFitted : shape.single;
    }
    Reshape(shape);
    return isOther;
}

bool WindowFit::ShowAlone(const EmbeddedObject* object)
{
    window_.SetFullScreen(object != nullptr);
    Page::Shape shape = page_.CurrentShape();
    shape.alone = object;
    const bool isOther = TakeSize(shape);
    Reshape(shape);
    return isOther;
}

void WindowFit::ZoomBy(double factor)
{
    const double before = page_.Zoom();
    Page::Shape shape = page_.CurrentShape();
    shape.zoom =
        std::clamp(before * factor, std::min(kLeastZoom, before), std::max(kMostZoom, before));
    if (std::abs(shape.zoom - 1) < 0.01) {
        shape.zoom = 1;
    }
    if (shape.single == Page::Single::kFitted) {
        shape.single = Page::Single::kInMiddle;
    }
    follows_ = false;
    Reshape(shape);
}

void WindowFit::ResetZoom()
{
    Page::Shape shape = page_.CurrentShape();
    shape.zoom = 1;
    if (shape.single == Page::Single::kInRow) {
        follows_ = mayFollow_;
    } else {
        follows_ = !follows_;
        shape.single = follows_ ? Page::Single::kFitted : Page::Single::kInMiddle;
    }
    Reshape(shape);
}

bool WindowFit::TakeSize(Page::Shape& shape)
{
    const bool isOther = window_.TakeSize();
    shape.width = window_.Width();
    shape.height = window_.Height();
    return isOther;
}

void WindowFit::Reshape(const Page::Shape& shape)
{
    if (!(shape == page_.CurrentShape())) {
        page_.Reshape(shape);
        window_.Invalidate();
    }
}

} // namespace viewer

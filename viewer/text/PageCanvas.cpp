// SPDX-License-Identifier: MIT
#include "viewer/text/PageCanvas.h"

#include "viewer/Rects.h"

namespace viewer
{

Canvas CanvasOn(Page& page, const Rect& changed)
{
    Canvas canvas;
    canvas.pixels = page.PixelsToDraw(changed, canvas.rowBytes);
    Rect bounds{};
    canvas.clip = Intersection(changed, *GetPortBounds(page.Port(), &bounds));
    return canvas;
}

} // namespace viewer

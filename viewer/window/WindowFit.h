// SPDX-License-Identifier: MIT
//
// The page's shape in its window: how it follows the window's size, and what the user does to that.
#pragma once

#include "viewer/Page.h"
#include "viewer/window/PageWindow.h"

namespace viewer
{

// What is the only thing on its page grows and shrinks with the window, until the user takes the
// zoom into his own hands.
class WindowFit
{
public:
    // `mayFollow`: false where somebody counts on the places of objects.
    WindowFit(Page& page, PageWindow& window, bool mayFollow)
        : page_(page), window_(window), mayFollow_(mayFollow), follows_(mayFollow)
    {
    }

    // The window opens, with the size that was asked for unless the screen gives it another.
    void Open(AreaSize asked, Page::Single single, double zoom);
    // The window may have another size. False if it is the same.
    bool TakeWindowSize();
    // Shows an object alone, as large as the screen; null: all of them again. False if the window
    // has the same size as before.
    bool ShowAlone(const EmbeddedObject* object);
    void ZoomBy(double factor);
    // What follows the window takes its own size, and what does not follows it again.
    void ResetZoom();

private:
    bool Follow(Page::Shape shape);
    bool TakeSize(Page::Shape& shape);
    void Reshape(const Page::Shape& shape);

    Page& page_;
    PageWindow& window_;
    AreaSize ownSize_; // the window's, but for the full screen
    bool mayFollow_;
    bool follows_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// The window: which part of the page it shows, and how that gets on the screen.
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"
#include "viewer/Layout.h"
#include "viewer/text/Canvas.h"
#include "viewer/window/WindowPart.h"

#include <SDL.h>
#include <memory>
#include <string>
#include <vector>

namespace viewer
{

// The page is as wide as the window and may be higher. It is shown by copying, changed rectangles
// only, into the window's own pixels: no picture is drawn twice, and no graphics card is woken.
class PageWindow
{
public:
    // Throws NoDisplay.
    PageWindow(const std::string& title, SInt16 width, SInt16 height);
    ~PageWindow();
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;

    SInt16 Width() const { return width_; }
    SInt16 Height() const { return height_; }
    UInt32 Id() const { return SDL_GetWindowID(window_.get()); }
    // The user has given it another size. False if it is the same.
    bool TakeSize();
    // How large it could be on its screen, its frame aside.
    AreaSize RoomOnScreen() const;
    // Its middle stays where it is as far as the screen goes.
    void Resize(AreaSize size);
    void SetFullScreen(bool full);
    bool IsFullScreen() const;
    void SetTitle(const std::string& title);

    // The page's height has changed.
    void SetContentHeight(SInt16 height);
    // Scrolls so that this row of the page is the window's first, as far as the page goes.
    void ScrollTo(SInt32 top);
    // Scrolls as little as shows the rectangle.
    void ScrollToShow(const Rect& rect);
    SInt16 Top() const { return top_; }
    Rect View() const;
    Point ToPage(SInt32 x, SInt32 y) const;

    // The scroll bar lies over the window's right edge, where the page is higher than the window.
    bool IsOnScrollBar(SInt32 x) const;
    void ScrollBarTo(SInt32 y);

    // A picture over the page, x, R, G, B in memory; empty: none.
    struct Panel {
        SInt16 width = 0;
        SInt16 height = 0;
        std::vector<UInt8> pixels;
    };
    // In the window's middle.
    void ShowPanel(Panel panel);
    // At the window's bottom, in front of everything.
    void ShowNotice(Panel notice);

    // Everything is to be shown again.
    void Invalidate() { isInvalid_ = true; }
    // Brings changed parts of the page to the screen.
    void Present(CGrafPtr port, const std::vector<Rect>& changes);

private:
    void CopyPart(CGrafPtr port, const Rect& part, SDL_Surface& surface) const;
    static void DrawPanel(const Panel& panel, const Rect& place, const Rect& part,
                          SDL_Surface& surface);
    void DrawScrollBar(SDL_Surface& surface) const;
    Rect ScrollThumb() const;
    Rect ScreenPart() const;
    Rect PlaceOf(const Panel& panel, SInt32 top) const;
    Rect PanelPlace() const;
    Rect NoticePlace() const;

    struct DestroyWindow {
        void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
    };
    std::unique_ptr<SDL_Window, DestroyWindow> window_;
    SInt16 width_ = 0;
    SInt16 height_ = 0;
    SInt16 contentHeight_ = 0;
    SInt16 top_ = 0;
    bool isInvalid_ = true;
    Panel panel_;
    Panel notice_;
};

} // namespace viewer

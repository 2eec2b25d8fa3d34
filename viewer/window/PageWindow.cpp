// SPDX-License-Identifier: MIT
#include "viewer/window/PageWindow.h"

#include "toolbox/CpuVersions.h"
#include "viewer/Rects.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>

namespace viewer
{
namespace
{

constexpr SInt16 kScrollBarWidth = 8;
constexpr SInt16 kLeastThumb = 24;
constexpr SInt16 kNoticeDistance = 16; // from the window's edge
constexpr Uint32 kThumbPixel = 0xA0A8B4;
constexpr SInt32 kBytesPerPixel = 4;

SInt16 ToCoordinate(SInt32 value)
{
    return static_cast<SInt16>(std::clamp<SInt32>(value, 0, INT16_MAX));
}

// From x, R, G, B in memory to the number 0xRRGGBB, which is what a surface of 32 bits holds.
VORN_CPU_VERSIONS void CopyRow(const UInt8* from, Uint32* to, SInt32 count)
{
    constexpr bool isLittleEndian = std::endian::native == std::endian::little;
    for (SInt32 i = 0; i < count; ++i) {
        Uint32 pixel = 0;
        std::memcpy(&pixel, from + ptrdiff_t{i} * kBytesPerPixel, sizeof pixel);
        to[i] = isLittleEndian ? __builtin_bswap32(pixel) : pixel;
    }
}

// Where there is no display SDL draws unseen, which is of use to nobody who did not ask for it.
bool IsSeen(const char* driver)
{
    const std::string_view name = driver;
    return SDL_getenv("SDL_VIDEODRIVER") != nullptr || name == "x11" || name == "wayland" ||
           name == "KMSDRM";
}

bool IsX11()
{
    return std::string_view(SDL_GetCurrentVideoDriver()) == "x11";
}

// SDL takes it where it can, unless the user wants something else.
bool IsX11Expected()
{
    const char* const wanted = SDL_getenv("SDL_VIDEODRIVER");
    return SDL_getenv("DISPLAY") != nullptr &&
           (wanted == nullptr || std::string_view(wanted) == "x11");
}

// With the display SDL opens an input method, for which the X library reads the rules by which
// several keys make a character: a quarter of the time to the first picture, and nobody writes
// here.
void LeaveOutComposing()
{
    setenv("XCOMPOSEFILE", "/dev/null", 1);
}

Uint32* PixelOf(const SDL_Surface& surface, SInt32 x, SInt32 y)
{
    return reinterpret_cast<Uint32*>(static_cast<UInt8*>(surface.pixels) +
                                     ptrdiff_t{y} * surface.pitch) +
           x;
}

} // namespace

PageWindow::PageWindow(const std::string& title, SInt16 width, SInt16 height)
{
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    if (IsX11Expected()) {
        LeaveOutComposing();
    }
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        throw NoDisplay(SDL_GetError());
    }
    if (!IsSeen(SDL_GetCurrentVideoDriver())) {
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        throw NoDisplay("no display could be opened");
    }
    if (IsX11()) {
        // The window's pixels are memory shared with the display there; others know only textures.
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    }
    SDL_StopTextInput();
    window_.reset(SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                                   width, height, SDL_WINDOW_RESIZABLE));
    if (window_ == nullptr) {
        const std::string reason = SDL_GetError();
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        throw NoDisplay(reason);
    }
    SDL_SetWindowMinimumSize(window_.get(), 200, 120);
    TakeSize();
}

PageWindow::~PageWindow()
{
    window_.reset();
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

bool PageWindow::TakeSize()
{
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(window_.get(), &width, &height);
    if (width == width_ && height == height_) {
        return false;
    }
    width_ = ToCoordinate(width);
    height_ = ToCoordinate(height);
    isInvalid_ = true;
    return true;
}

// Where its pixels may be: what the screen's bars and the window's own frame leave.
Rect PageWindow::ScreenPart() const
{
    SDL_Rect free{0, 0, width_, height_};
    const int display = std::max(0, SDL_GetWindowDisplayIndex(window_.get()));
    SDL_GetDisplayUsableBounds(display, &free);
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;
    SDL_GetWindowBordersSize(window_.get(), &top, &left, &bottom, &right);
    return {static_cast<SInt16>(free.y + top), static_cast<SInt16>(free.x + left),
            static_cast<SInt16>(free.y + free.h - bottom),
            static_cast<SInt16>(free.x + free.w - right)};
}

AreaSize PageWindow::RoomOnScreen() const
{
    const Rect part = ScreenPart();
    return {static_cast<SInt16>(part.right - part.left),
            static_cast<SInt16>(part.bottom - part.top)};
}

void PageWindow::Resize(AreaSize size)
{
    const Rect part = ScreenPart();
    int left = 0;
    int top = 0;
    SDL_GetWindowPosition(window_.get(), &left, &top);
    left = std::max<int>(part.left,
                         std::min(left + (width_ - size.width) / 2, part.right - size.width));
    top = std::max<int>(part.top,
                        std::min(top + (height_ - size.height) / 2, part.bottom - size.height));
    SDL_SetWindowSize(window_.get(), size.width, size.height);
    SDL_SetWindowPosition(window_.get(), left, top);
}

void PageWindow::SetFullScreen(bool full)
{
    SDL_SetWindowFullscreen(window_.get(), full ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
}

bool PageWindow::IsFullScreen() const
{
    return (SDL_GetWindowFlags(window_.get()) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0;
}

void PageWindow::SetTitle(const std::string& title)
{
    SDL_SetWindowTitle(window_.get(), title.c_str());
}

void PageWindow::SetContentHeight(SInt16 height)
{
    if (height != contentHeight_) {
        contentHeight_ = height;
        ScrollTo(top_);
        isInvalid_ = true;
    }
}

void PageWindow::ScrollTo(SInt32 top)
{
    const SInt16 wanted =
        ToCoordinate(std::min<SInt32>(top, std::max(0, contentHeight_ - height_)));
    if (wanted != top_) {
        top_ = wanted;
        isInvalid_ = true;
    }
}

void PageWindow::ScrollToShow(const Rect& rect)
{
    if (rect.top < top_ || rect.bottom - rect.top > height_) {
        ScrollTo(rect.top);
    } else if (rect.bottom > top_ + height_) {
        ScrollTo(rect.bottom - height_);
    }
}

Rect PageWindow::View() const
{
    return {top_, 0, ToCoordinate(top_ + height_), width_};
}

Point PageWindow::ToPage(SInt32 x, SInt32 y) const
{
    const auto clamped = [](SInt32 value) {
        return static_cast<SInt16>(std::clamp<SInt32>(value, INT16_MIN, INT16_MAX));
    };
    return {clamped(y + top_), clamped(x)};
}

bool PageWindow::IsOnScrollBar(SInt32 x) const
{
    return contentHeight_ > height_ && x >= width_ - kScrollBarWidth;
}

// The thumb's middle goes there.
void PageWindow::ScrollBarTo(SInt32 y)
{
    const Rect thumb = ScrollThumb();
    const SInt32 length = thumb.bottom - thumb.top;
    const SInt32 travel = std::max(1, height_ - length);
    ScrollTo((y - length / 2) * (contentHeight_ - height_) / travel);
}

// In the window's coordinates.
Rect PageWindow::ScrollThumb() const
{
    if (contentHeight_ <= height_) {
        return {};
    }
    const SInt32 length = std::max<SInt32>(kLeastThumb, SInt32{height_} * height_ / contentHeight_);
    const SInt32 top = SInt32{top_} * (height_ - length) / (contentHeight_ - height_);
    return {ToCoordinate(top + 1), ToCoordinate(width_ - kScrollBarWidth + 1),
            ToCoordinate(top + length - 1), ToCoordinate(width_ - 1)};
}

Rect PageWindow::PlaceOf(const Panel& panel, SInt32 top) const
{
    const SInt32 left = std::max(0, (width_ - panel.width) / 2);
    top = std::max(0, top);
    return {ToCoordinate(top), ToCoordinate(left), ToCoordinate(top + panel.height),
            ToCoordinate(left + panel.width)};
}

Rect PageWindow::PanelPlace() const
{
    return PlaceOf(panel_, (height_ - panel_.height) / 2);
}

Rect PageWindow::NoticePlace() const
{
    return PlaceOf(notice_, height_ - notice_.height - kNoticeDistance);
}

void PageWindow::ShowPanel(Panel panel)
{
    panel_ = std::move(panel);
    isInvalid_ = true;
}

void PageWindow::ShowNotice(Panel notice)
{
    notice_ = std::move(notice);
    isInvalid_ = true;
}

void PageWindow::Present(CGrafPtr port, const std::vector<Rect>& changes)
{
    const Rect window = {0, 0, height_, width_};
    std::vector<SDL_Rect> shown;
    SDL_Surface* const surface =
        isInvalid_ || !changes.empty() ? SDL_GetWindowSurface(window_.get()) : nullptr;
    if (surface == nullptr || surface->format->BytesPerPixel != kBytesPerPixel) {
        return;
    }
    const auto show = [&](const Rect& onPage) {
        const Rect moved = {ToCoordinate(onPage.top - top_), onPage.left,
                            ToCoordinate(onPage.bottom - top_), onPage.right};
        Rect part = Intersection(moved, window);
        part.right = std::min<SInt16>(part.right, static_cast<SInt16>(surface->w));
        part.bottom = std::min<SInt16>(part.bottom, static_cast<SInt16>(surface->h));
        if (!IsEmpty(part)) {
            CopyPart(port, part, *surface);
            DrawPanel(panel_, PanelPlace(), part, *surface);
            DrawPanel(notice_, NoticePlace(), part, *surface);
            shown.push_back({part.left, part.top, part.right - part.left, part.bottom - part.top});
        }
    };
    if (isInvalid_) {
        show(View());
    } else {
        std::for_each(changes.begin(), changes.end(), show);
    }
    if (!shown.empty()) {
        DrawScrollBar(*surface);
        SDL_UpdateWindowSurfaceRects(window_.get(), shown.data(), static_cast<int>(shown.size()));
    }
    isInvalid_ = false;
}

// The port may not have grown with the window, for want of memory: there it stays grey.
void PageWindow::CopyPart(CGrafPtr port, const Rect& part, SDL_Surface& surface) const
{
    Rect bounds{};
    GetPortBounds(port, &bounds);
    SInt32 rowBytes = 0;
    const UInt8* const pixels = GetPortPixels(port, &rowBytes);
    const SInt32 width = std::min(part.right, bounds.right) - part.left;
    for (SInt32 v = part.top; v < part.bottom; ++v) {
        Uint32* const to = PixelOf(surface, part.left, v);
        if (v + top_ < bounds.bottom && width > 0) {
            CopyRow(pixels + ptrdiff_t{v + top_} * rowBytes + ptrdiff_t{part.left} * kBytesPerPixel,
                    to, width);
        } else {
            std::memset(to, 0x80, static_cast<size_t>(part.right - part.left) * kBytesPerPixel);
        }
    }
}

void PageWindow::DrawPanel(const Panel& panel, const Rect& place, const Rect& part,
                           SDL_Surface& surface)
{
    const Rect common = Intersection(part, place);
    for (SInt32 v = common.top; v < common.bottom && common.left < common.right; ++v) {
        const ptrdiff_t pixel = ptrdiff_t{v - place.top} * panel.width + common.left - place.left;
        CopyRow(panel.pixels.data() + pixel * kBytesPerPixel, PixelOf(surface, common.left, v),
                common.right - common.left);
    }
}

void PageWindow::DrawScrollBar(SDL_Surface& surface) const
{
    const Rect thumb = Intersection(
        ScrollThumb(), {0, 0, static_cast<SInt16>(surface.h), static_cast<SInt16>(surface.w)});
    for (SInt32 v = thumb.top; v < thumb.bottom && thumb.left < thumb.right; ++v) {
        std::fill_n(PixelOf(surface, thumb.left, v), thumb.right - thumb.left, kThumbPixel);
    }
}

} // namespace viewer

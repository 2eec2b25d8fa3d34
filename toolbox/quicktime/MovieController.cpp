// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MovieController.h"

#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/Drawing.h"
#include "toolbox/quickdraw/Port.h"
#include "toolbox/quicktime/Movie.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace toolbox;

namespace
{

constexpr RGBColor kBarColor = {0xDDDD, 0xDDDD, 0xDDDD};
constexpr RGBColor kEdgeColor = {0x5555, 0x5555, 0x5555};
constexpr RGBColor kSymbolColor = {0x1111, 0x1111, 0x1111};
constexpr RGBColor kTroughColor = {0xFFFF, 0xFFFF, 0xFFFF};
constexpr RGBColor kLoadedColor = {0x8888, 0xAAAA, 0xDDDD};
constexpr RGBColor kThumbColor = {0x3333, 0x5555, 0x9999};
constexpr SInt16 kBarOfSoundWidth = 240; // a movie without pictures has only a bar
constexpr int kFullVolume = 256;
constexpr int kPlaySymbolWidth = 8;
constexpr int kVolumeStep = 32;
// In seconds.
constexpr SInt32 kShortSeek = 5;
constexpr SInt32 kLongSeek = 60;

bool Contains(const Rect& rect, Point at)
{
    return at.v >= rect.top && at.v < rect.bottom && at.h >= rect.left && at.h < rect.right;
}

bool IsEmpty(const Rect& rect)
{
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

Rect MakeRect(int top, int left, int bottom, int right)
{
    return Rect{static_cast<SInt16>(top), static_cast<SInt16>(left), static_cast<SInt16>(bottom),
                static_cast<SInt16>(right)};
}

} // namespace

ControllerLayout::ControllerLayout(const Rect& bounds)
{
    picture = bounds;
    picture.bottom = static_cast<SInt16>(std::max<int>(bounds.top, bounds.bottom - kBarHeight));
    bar = bounds;
    bar.top = picture.bottom;
    const int width = bar.right - bar.left;
    int left = bar.left;
    const auto next = [&](int partWidth) {
        const int right = std::min<int>(left + partWidth, bar.right);
        const Rect part = MakeRect(bar.top, left, bar.bottom, right);
        left = right;
        return part;
    };
    const bool hasVolume = width >= 2 * kButtonWidth;
    const bool hasSlider = width >= 2 * kButtonWidth + kLeastSliderWidth;
    const bool hasSteps = width >= 6 * kButtonWidth;
    const int stepsWidth = hasSteps ? 2 * kButtonWidth : 0;
    volume = next(hasVolume ? kButtonWidth : 0);
    play = next(kButtonWidth);
    slider = next(hasSlider ? bar.right - left - stepsWidth : 0);
    stepBack = next(hasSteps ? kButtonWidth : 0);
    stepForward = next(hasSteps ? kButtonWidth : 0);
}

SInt16 ControllerLayout::ThumbAt(double share) const
{
    const int travel = std::max(0, slider.right - slider.left - kThumbWidth);
    return static_cast<SInt16>(slider.left + std::lround(std::clamp(share, 0.0, 1.0) * travel));
}

double ControllerLayout::ShareAt(SInt16 h) const
{
    const int travel = slider.right - slider.left - kThumbWidth;
    if (travel <= 0) {
        return 0;
    }
    return std::clamp((h - slider.left - kThumbWidth / 2.0) / travel, 0.0, 1.0);
}

MovieControllerRecord::MovieControllerRecord(Movie movie, const Rect& box)
    : movie_(movie), layout_(box)
{
    Rect bounds = box;
    if (bounds.right <= bounds.left) {
        bounds.right = static_cast<SInt16>(bounds.left + kBarOfSoundWidth);
        bounds.bottom = bounds.top;
    }
    if (bounds.bottom < bounds.top) {
        bounds.bottom = bounds.top;
    }
    bounds.bottom = static_cast<SInt16>(bounds.bottom + ControllerLayout::kBarHeight);
    SetBounds(bounds);
    CountInLedger(kLiveMovieControllers, 1);
}

MovieControllerRecord::~MovieControllerRecord()
{
    CountInLedger(kLiveMovieControllers, -1);
}

void MovieControllerRecord::SetBounds(const Rect& bounds)
{
    bounds_ = bounds;
    layout_ = ControllerLayout(bounds);
    movie_->SetBox(layout_.picture);
}

void MovieControllerRecord::SetClip(RgnHandle clip)
{
    movie_->SetClip(clip);
}

void MovieControllerRecord::Draw()
{
    movie_->Draw();
    DrawBar(CurrentFace());
}

void MovieControllerRecord::Idle()
{
    movie_->Slice();
    const Face face = CurrentFace();
    if (drawn_ && *drawn_ != face) {
        DrawBar(face);
    }
}

MovieControllerRecord::Face MovieControllerRecord::CurrentFace() const
{
    const double duration = static_cast<double>(std::max<SInt64>(1, movie_->Duration()));
    const double loaded = static_cast<double>(movie_->LoadedDuration()) / duration;
    Face face;
    face.isPlaying = movie_->IsPlaying();
    face.thumb = layout_.ThumbAt(static_cast<double>(movie_->Time()) / duration);
    face.loadedEnd = static_cast<SInt16>(layout_.ThumbAt(loaded) + ControllerLayout::kThumbWidth);
    face.volume = movie_->Volume();
    return face;
}

void MovieControllerRecord::DrawBar(const Face& face)
{
    drawn_ = face;
    if (movie_->Port() == nullptr) {
        return;
    }
    CGrafPort& port = *movie_->Port();
    const RgnHandle clip = movie_->Clip();
    PaintRect(port, layout_.bar, kBarColor, clip);
    PaintRect(port,
              MakeRect(layout_.bar.top, layout_.bar.left, layout_.bar.top + 1, layout_.bar.right),
              kEdgeColor, clip);
    DrawVolume(face, port);
    DrawPlay(face, port);
    DrawSlider(face, port);
    DrawStep(layout_.stepBack, false, port);
    DrawStep(layout_.stepForward, true, port);
}

// A loudspeaker, and a bar that is as high as the sound is loud.
void MovieControllerRecord::DrawVolume(const Face& face, CGrafPort& port)
{
    const Rect& box = layout_.volume;
    if (IsEmpty(box)) {
        return;
    }
    const RgnHandle clip = movie_->Clip();
    PaintRect(port, MakeRect(box.top + 7, box.left + 3, box.top + 10, box.left + 5), kSymbolColor,
              clip);
    for (int i = 0; i < 4; ++i) {
        PaintRect(port,
                  MakeRect(box.top + 7 - i, box.left + 5 + i, box.top + 10 + i, box.left + 6 + i),
                  kSymbolColor, clip);
    }
    const int height = face.volume * 9 / kFullVolume;
    PaintRect(port, MakeRect(box.top + 13 - height, box.left + 11, box.top + 13, box.left + 13),
              kThumbColor, clip);
}

void MovieControllerRecord::DrawPlay(const Face& face, CGrafPort& port)
{
    const Rect& box = layout_.play;
    const RgnHandle clip = movie_->Clip();
    // In the middle of a whole button; of less, as much as there is room for.
    const int left = box.left + std::max(0, box.right - box.left - kPlaySymbolWidth) / 2;
    const auto paint = [&](int top, int from, int bottom, int to) {
        const Rect part = MakeRect(box.top + top, left + from, box.top + bottom,
                                   std::min<int>(left + to, box.right));
        if (!IsEmpty(part)) {
            PaintRect(port, part, kSymbolColor, clip);
        }
    };
    if (face.isPlaying) {
        paint(4, 0, 13, 3);
        paint(4, 5, 13, 8);
        return;
    }
    for (int i = 0; i < kPlaySymbolWidth; ++i) {
        const int half = (kPlaySymbolWidth - i) / 2;
        paint(8 - half, i, 9 + half, i + 1);
    }
}

void MovieControllerRecord::DrawSlider(const Face& face, CGrafPort& port)
{
    const Rect& box = layout_.slider;
    const RgnHandle clip = movie_->Clip();
    if (IsEmpty(box)) {
        return;
    }
    const Rect trough = MakeRect(box.top + 6, box.left + 1, box.top + 11, box.right - 1);
    PaintRect(port, trough, kEdgeColor, clip);
    PaintRect(port, MakeRect(trough.top + 1, trough.left + 1, trough.bottom - 1, trough.right - 1),
              kTroughColor, clip);
    PaintRect(port,
              MakeRect(trough.top + 1, trough.left + 1, trough.bottom - 1,
                       std::min<int>(face.loadedEnd, trough.right - 1)),
              kLoadedColor, clip);
    PaintRect(
        port,
        MakeRect(box.top + 3, face.thumb, box.top + 14, face.thumb + ControllerLayout::kThumbWidth),
        kThumbColor, clip);
}

void MovieControllerRecord::DrawStep(const Rect& box, bool isForward, CGrafPort& port)
{
    if (IsEmpty(box)) {
        return;
    }
    const RgnHandle clip = movie_->Clip();
    const int stop = isForward ? box.left + 11 : box.left + 4;
    PaintRect(port, MakeRect(box.top + 5, stop, box.top + 12, stop + 1), kSymbolColor, clip);
    for (int i = 0; i < 5; ++i) {
        const int half = isForward ? 4 - i : i;
        const int left = box.left + 5 + i;
        PaintRect(port, MakeRect(box.top + 8 - half, left, box.top + 9 + half, left + 1),
                  kSymbolColor, clip);
    }
}

// Events tell where on the screen the pointer is; the controller stands in its port.
Point MovieControllerRecord::PlaceInPort(Point onScreen) const
{
    const CGrafPtr port = movie_->Port();
    if (port == nullptr) {
        return onScreen;
    }
    return Point{static_cast<SInt16>(onScreen.v - port->placeOnScreen.v),
                 static_cast<SInt16>(onScreen.h - port->placeOnScreen.h)};
}

bool MovieControllerRecord::HandleEvent(const EventRecord& event)
{
    const Point pointer = PlaceInPort(event.where);
    switch (event.what) {
    case mouseDown:
        return Press(pointer);
    case mouseUp: {
        const bool wasDragging = std::exchange(isDragging_, false);
        if (wasDragging && wasPlaying_ && !movie_->IsAtEnd()) { // where it would begin anew
            movie_->Play();
        }
        return wasDragging || Contains(bounds_, pointer);
    }
    case osEvt:
        if (isDragging_) {
            DragTo(pointer);
        }
        return isDragging_;
    case keyDown:
    case autoKey:
        return HandleKey(static_cast<char>(event.message & 0xFF), event.modifiers);
    default:
        return false;
    }
}

bool MovieControllerRecord::Press(Point at)
{
    if (!Contains(bounds_, at)) {
        return false;
    }
    if (Contains(layout_.play, at) || Contains(layout_.picture, at)) {
        TogglePlaying();
    } else if (Contains(layout_.volume, at)) {
        movie_->SetVolume(movie_->Volume() > 0 ? 0 : kFullVolume);
    } else if (Contains(layout_.slider, at)) {
        isDragging_ = true;
        wasPlaying_ = movie_->IsPlaying();
        movie_->Pause();
        DragTo(at);
    } else if (Contains(layout_.stepBack, at)) {
        movie_->StepBack();
    } else if (Contains(layout_.stepForward, at)) {
        movie_->StepForward();
    }
    Idle();
    return true;
}

void MovieControllerRecord::DragTo(Point at)
{
    const double share = layout_.ShareAt(at.h);
    movie_->GoTo(static_cast<SInt64>(share * static_cast<double>(movie_->Duration())));
    Idle();
}

bool MovieControllerRecord::HandleKey(char key, UInt16 modifiers)
{
    const bool isArrow = key == kLeftArrowCharCode || key == kRightArrowCharCode;
    const SInt32 seconds = (modifiers & cmdKey) != 0     ? kLongSeek
                           : (modifiers & shiftKey) != 0 ? kShortSeek
                                                         : 0;
    if (isArrow && seconds > 0) {
        Seek(key == kLeftArrowCharCode ? -seconds : seconds);
        return true;
    }
    switch (key) {
    case kSpaceCharCode:
        TogglePlaying();
        break;
    case kLeftArrowCharCode:
        movie_->StepBack();
        break;
    case kRightArrowCharCode:
        movie_->StepForward();
        break;
    case kUpArrowCharCode:
        movie_->SetVolume(movie_->Volume() + kVolumeStep);
        break;
    case kDownArrowCharCode:
        movie_->SetVolume(movie_->Volume() - kVolumeStep);
        break;
    default:
        return false;
    }
    Idle();
    return true;
}

// A movie that plays goes on from there.
void MovieControllerRecord::Seek(SInt32 seconds)
{
    movie_->GoTo(movie_->Time() + seconds * kSecond);
    Idle();
}

void MovieControllerRecord::TogglePlaying()
{
    if (movie_->IsPlaying()) {
        movie_->Pause();
    } else {
        movie_->Play();
    }
}

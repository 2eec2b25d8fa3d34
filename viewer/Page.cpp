// SPDX-License-Identifier: MIT
#include "viewer/Page.h"

#include "toolbox/Errors.h"
#include "toolbox/events/Events.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace viewer
{
namespace
{

constexpr UInt8 kBackground = 0xFF;
constexpr UInt8 kPlaceholderFrame = 0xC0;
constexpr SInt32 kBytesPerPixel = 4;
// New rows of images are drawn 30 times a second.
constexpr SInt64 kRowsDrawInterval = 1'000'000 / 30;

bool Contains(const Rect& rect, Point place)
{
    return place.v >= rect.top && place.v < rect.bottom && place.h >= rect.left &&
           place.h < rect.right;
}

Rect Intersection(const Rect& a, const Rect& b)
{
    return {std::max(a.top, b.top), std::max(a.left, b.left), std::min(a.bottom, b.bottom),
            std::min(a.right, b.right)};
}

} // namespace

Page::Page(SInt16 width, SInt16 height) : width_(width), clip_(NewRgn())
{
    const Rect bounds = {0, 0, height, width};
    if (clip_ == nullptr || CreateWindowPort(&bounds, &port_) != noErr) {
        DisposeRgn(clip_);
        throw std::runtime_error("there is not enough memory for a page of that size");
    }
    SetPort(port_);
}

Page::~Page()
{
    objects_.clear();
    DisposeWindowPort(port_);
    DisposeRgn(clip_);
}

EmbeddedObject& Page::Add(std::unique_ptr<EmbeddedObject> object)
{
    objects_.push_back(std::move(object));
    laidOut_ = false;
    return *objects_.back();
}

void Page::IdleObjects()
{
    for (const auto& object : objects_) {
        PreparePort(object->Area());
        object->Idle();
    }
}

void Page::DrawChanges()
{
    bool sizeChanged = !laidOut_;
    for (const auto& object : objects_) {
        sizeChanged = object->TakeSizeChange() || sizeChanged;
    }
    if (sizeChanged) {
        LayOut();
    }
    for (const auto& object : objects_) {
        if (object->NeedsDisplay()) {
            Display(*object, object->Area());
        }
    }
    DrawNewRows();
}

void Page::ObserveObjects()
{
    for (const auto& object : objects_) {
        object->Observe();
    }
}

// What moved is wiped out at its old place first, because something else may stand there now.
void Page::LayOut()
{
    std::vector<AreaSize> areas;
    for (const auto& object : objects_) {
        areas.push_back(object->WantedArea(width_));
    }
    const std::vector<Rect> rects = LayOutRows(areas, width_);
    for (size_t i = 0; i < objects_.size(); ++i) {
        if (EqualRect(&objects_[i]->Area(), &rects[i]) == 0) {
            Fill(objects_[i]->Area(), kBackground);
        }
    }
    for (size_t i = 0; i < objects_.size(); ++i) {
        MoveObject(*objects_[i], rects[i]);
    }
    laidOut_ = true;
}

void Page::MoveObject(EmbeddedObject& object, const Rect& area)
{
    if (EqualRect(&object.Area(), &area) == 0) {
        object.SetArea(area);
        object.NeedDisplay();
    }
    if (!object.HasDimensions()) {
        DrawPlaceholder(area);
    }
}

void Page::DrawNewRows()
{
    const SInt64 now = ToolboxMicroseconds();
    if (now < nextRowsDraw_) {
        return;
    }
    for (const auto& object : objects_) {
        if (const std::optional<Rect> band = object->TakeNewRows()) {
            Display(*object, Intersection(*band, object->Area()));
            nextRowsDraw_ = now + kRowsDrawInterval;
        }
    }
}

void Page::Display(EmbeddedObject& object, const Rect& clip)
{
    Fill(clip, kBackground);
    PreparePort(clip);
    object.Display();
}

Page::Below Page::LookBelow() const
{
    Rect bounds{};
    GetPortBounds(port_, &bounds);
    Below below;
    for (const auto& object : objects_) {
        const Rect& area = object->Area();
        if (object->HasDimensions() && area.top >= bounds.bottom) {
            ++below.objects;
            below.bottom = std::max(below.bottom, area.bottom);
        }
    }
    return below;
}

EmbeddedObject* Page::ObjectAt(Point place) const
{
    for (const auto& object : objects_) {
        if (Contains(object->Area(), place)) {
            return object.get();
        }
    }
    return nullptr;
}

bool Page::Click(EmbeddedObject& object, const EventRecord& event)
{
    PreparePort(object.Area());
    return object.Click(event);
}

void Page::FreeObjects()
{
    for (const auto& object : objects_) {
        SetPort(port_);
        object->Free();
    }
}

void Page::PreparePort(const Rect& clip)
{
    SetPort(port_);
    RectRgn(clip_, &clip);
    SetClip(clip_);
}

void Page::Fill(const Rect& rect, UInt8 grey)
{
    Rect bounds{};
    const Rect visible = Intersection(rect, *GetPortBounds(port_, &bounds));
    SInt32 rowBytes = 0;
    UInt8* const pixels = GetPortPixels(port_, &rowBytes);
    for (SInt32 v = visible.top; v < visible.bottom && visible.left < visible.right; ++v) {
        std::memset(pixels + static_cast<ptrdiff_t>(v) * rowBytes +
                        ptrdiff_t{visible.left} * kBytesPerPixel,
                    grey, static_cast<size_t>(visible.right - visible.left) * kBytesPerPixel);
    }
}

void Page::DrawPlaceholder(const Rect& area)
{
    Fill(area, kPlaceholderFrame);
    const Rect inside = {static_cast<SInt16>(area.top + 1), static_cast<SInt16>(area.left + 1),
                         static_cast<SInt16>(area.bottom - 1), static_cast<SInt16>(area.right - 1)};
    Fill(inside, kBackground);
}

} // namespace viewer

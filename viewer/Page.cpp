// SPDX-License-Identifier: MIT
#include "viewer/Page.h"

#include "toolbox/events/Events.h"
#include "viewer/Rects.h"

#include <algorithm>
#include <iterator>

namespace viewer
{
namespace
{

constexpr UInt8 kBackground = 0xFF;
// Around an object that is shown alone.
constexpr UInt8 kDarkness = 0x18;
constexpr UInt8 kPlaceholderFrame = 0xC0;
// New rows of images are drawn 30 times a second.
constexpr SInt64 kRowsDrawInterval = 1'000'000 / 30;

} // namespace

Page::Page(SInt16 width, SInt16 height)
    : width_(width), port_(width, height), view_{0, 0, height, width}
{
    shape_ = {width, height};
}

EmbeddedObject& Page::Add(std::unique_ptr<EmbeddedObject> object)
{
    objects_.push_back(std::move(object));
    laidOut_ = false;
    return *objects_.back();
}

void Page::Add(PageContent content)
{
    for (TextBlock& text : content.texts) {
        text.objectsBefore += objects_.size();
        texts_.Add(std::move(text));
    }
    for (auto& object : content.objects) {
        Add(std::move(object));
    }
    laidOut_ = false;
}

std::vector<EmbeddedObject*> Page::Replace(const EmbeddedObject& object, PageContent content)
{
    const auto found = std::find_if(objects_.begin(), objects_.end(),
                                    [&](const auto& each) { return each.get() == &object; });
    const auto place = static_cast<size_t>(found - objects_.begin());
    WipeOldPlace(object, {}, {});
    if (shape_.alone == &object) {
        shape_.alone = nullptr;
    }
    std::vector<EmbeddedObject*> added;
    for (const auto& each : content.objects) {
        added.push_back(each.get());
    }
    replaced_.push_back(std::move(*found));
    texts_.ReplaceObject(place, content.objects.size(), std::move(content.texts));
    objects_.insert(objects_.erase(found), std::make_move_iterator(content.objects.begin()),
                    std::make_move_iterator(content.objects.end()));
    LayOut(); // nobody is to see objects without a place
    return added;
}

void Page::IdleObjects()
{
    port_.NoteOtherDrawing();
    const SInt64 now = ToolboxMicroseconds();
    for (const auto& object : objects_) {
        if (object->IsIdleDue(now, IsInView(*object))) {
            Idle(*object, now);
        }
    }
}

void Page::Idle(EmbeddedObject& object, SInt64 now)
{
    port_.Prepare(object.Area());
    object.Idle();
    if (port_.TakeDrawing(object.Area())) {
        object.NoteDrawing(EmbeddedObject::Drawing::kByItself);
    }
    object.NoteIdle(now, rhythm_);
}

bool Page::IsInView(const EmbeddedObject& object) const
{
    return !IsEmpty(Intersection(object.Area(), view_));
}

std::optional<SInt64> Page::NextTime() const
{
    std::optional<SInt64> next;
    const auto consider = [&](SInt64 time) { next = std::min(next.value_or(time), time); };
    for (const auto& object : objects_) {
        if (const std::optional<SInt64> idle = object->NextIdle(); idle && IsInView(*object)) {
            consider(*idle);
        }
        if (object->HasNewRows()) {
            consider(nextRowsDraw_);
        }
    }
    return next;
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
        if (object->NeedsDisplay() && !IsEmpty(object->Area())) {
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
    const PagePlaces places = Place();
    FitPort();
    for (size_t i = 0; i < objects_.size(); ++i) {
        WipeOldPlace(*objects_[i], places.objects[i], places.captions[i]);
    }
    for (const Rect& area : texts_.Move(places.paragraphs)) {
        Wipe(area);
    }
    for (size_t i = 0; i < objects_.size(); ++i) {
        MoveObject(*objects_[i], places.objects[i]);
        objects_[i]->SetCaptionArea(places.captions[i]);
    }
    laidOut_ = true;
    ++layouts_;
}

void Page::WipeOldPlace(const EmbeddedObject& object, const Rect& area, const Rect& caption)
{
    if (!IsEmpty(object.Area()) && EqualRect(&object.Area(), &area) == 0) {
        Wipe(Surroundings(object.Area()));
    }
    if (!IsEmpty(object.CaptionArea()) && EqualRect(&object.CaptionArea(), &caption) == 0) {
        Wipe(object.CaptionArea());
    }
}

PagePlaces Page::Place()
{
    contentHeight_ = 0;
    if (shape_.alone != nullptr) {
        const auto found = std::find_if(objects_.begin(), objects_.end(), [&](const auto& each) {
            return each.get() == shape_.alone;
        });
        PagePlaces places;
        places.objects.resize(objects_.size());
        places.captions.resize(objects_.size());
        places.objects[static_cast<size_t>(found - objects_.begin())] = PlaceAlone(**found);
        return places;
    }
    return HasObjectInMiddle() ? PlaceInMiddle(*objects_.front()) : PlaceAll();
}

PagePlaces Page::PlaceAll()
{
    std::vector<AreaSize> areas;
    const auto inner = static_cast<SInt16>(std::max(1, width_ - 2 * style_.margin));
    for (const auto& object : objects_) {
        areas.push_back(object->WantedArea(inner, shape_.zoom));
    }
    PageStyle style = style_;
    style.paragraphGap = Zoomed({style.paragraphGap, 0}, shape_.zoom).width;
    PagePlaces places = LayOutRows(areas, width_, style, texts_.Spaces(inner, shape_.zoom));
    for (const Rect& rect : places.objects) {
        HoldUpTo(rect.bottom + style_.captionHeight);
    }
    for (const Rect& rect : places.paragraphs) {
        HoldUpTo(rect.bottom);
    }
    return places;
}

bool Page::HasObjectInMiddle() const
{
    return shape_.single != Single::kInRow && shape_.alone == nullptr && objects_.size() == 1 &&
           texts_.Blocks().empty();
}

double Page::Zoom() const
{
    if (!HasObjectInMiddle() || shape_.single != Single::kFitted) {
        return shape_.zoom;
    }
    const EmbeddedObject& object = *objects_.front();
    if (!object.HasDimensions() || !object.MayScale()) {
        return shape_.zoom;
    }
    const AreaSize room = RoomForOne({shape_.width, shape_.height}, style_);
    const auto rows = static_cast<SInt16>(-object.RowsOfController());
    return ZoomToFit(object.PictureSize(), WithRows(room, rows));
}

PagePlaces Page::PlaceInMiddle(EmbeddedObject& object)
{
    const AreaSize window = {shape_.width, shape_.height};
    const double zoom = Zoom();
    object.SetEnlarged(zoom > 1);
    const AreaSize area = object.WantedArea(RoomForOne(window, style_).width, zoom);
    const PagePlaces places = LayOutInMiddle(area, window, style_);
    HoldUpTo(places.objects[0].bottom + style_.captionHeight);
    return places;
}

// The page ends there, or further below.
void Page::HoldUpTo(int end)
{
    contentHeight_ =
        static_cast<SInt16>(std::clamp<int>(end + style_.margin, contentHeight_, INT16_MAX));
}

// As large as the window lets it be, in proportion, in its middle.
Rect Page::PlaceAlone(const EmbeddedObject& object) const
{
    AreaSize size = object.NaturalSize();
    if (!object.IsSoundOnly()) {
        const SInt16 rows = object.RowsOfController();
        const AreaSize picture = object.PictureSize();
        const auto height = static_cast<SInt16>(shape_.height - rows);
        const double zoom = ZoomToFit(picture, {shape_.width, height});
        size = WithRows(Zoomed(picture, zoom), rows);
    }
    const int left = (shape_.width - size.width) / 2;
    const int top = (shape_.height - size.height) / 2;
    return {static_cast<SInt16>(top), static_cast<SInt16>(left),
            static_cast<SInt16>(top + size.height), static_cast<SInt16>(left + size.width)};
}

// Without memory for more the port stays as it is, and what lies below it cannot be seen.
void Page::FitPort()
{
    if (!grows_) {
        return;
    }
    const Rect bounds = port_.Bounds();
    const Rect wanted = {0, 0, std::max(shape_.height, contentHeight_), shape_.width};
    if (EqualRect(&bounds, &wanted) == 0 && port_.Resize(wanted)) {
        Wipe({bounds.bottom, 0, wanted.bottom, wanted.right});
        Wipe({0, bounds.right, wanted.bottom, wanted.right});
    }
}

// An area with what may mark it.
Rect Page::Surroundings(const Rect& area) const
{
    const int around = std::min(style_.gap / 2, style_.margin / 2);
    return {static_cast<SInt16>(area.top - around), static_cast<SInt16>(area.left - around),
            static_cast<SInt16>(std::min(area.bottom + around, INT16_MAX)),
            static_cast<SInt16>(std::min(area.right + around, INT16_MAX))};
}

void Page::SetStyle(const PageStyle& style, Height height)
{
    style_ = style;
    grows_ = height == Height::kGrows;
    laidOut_ = false;
    Wipe({0, 0, shape_.height, shape_.width});
}

void Page::Reshape(const Shape& shape)
{
    shape_ = shape;
    width_ = shape.width;
    laidOut_ = false;
    Wipe(port_.Bounds());
    texts_.Forget();
    for (const auto& object : objects_) {
        object->SetArea({});
        object->SetCaptionArea({});
        object->SetEnlarged(shape.zoom > 1 || shape.alone == object.get());
    }
}

void Page::Wipe(const Rect& rect)
{
    port_.Fill(rect, shape_.alone == nullptr ? style_.background : kDarkness);
}

void Page::MoveObject(EmbeddedObject& object, const Rect& area)
{
    if (EqualRect(&object.Area(), &area) == 0) {
        object.SetArea(area);
        object.NeedDisplay();
    }
    if (!object.HasDimensions() && !IsEmpty(area)) {
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
    port_.NoteOtherDrawing();
    port_.Fill(clip, kBackground);
    port_.Prepare(clip);
    object.Display();
    if (port_.TakeDrawing(clip)) {
        object.NoteDrawing(EmbeddedObject::Drawing::kAsDisplayed);
    }
}

Page::Below Page::LookBelow() const
{
    const SInt16 end = port_.Bounds().bottom;
    Below below;
    for (const auto& object : objects_) {
        const Rect& area = object->Area();
        if (object->HasDimensions() && area.bottom > end) {
            ++(area.top >= end ? below.objects : below.cut);
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
    port_.NoteOtherDrawing();
    port_.Prepare(object.Area());
    const bool taken = object.Click(event);
    if (port_.TakeDrawing(object.Area())) {
        object.NoteDrawing(EmbeddedObject::Drawing::kByItself);
    }
    return taken;
}

void Page::FreeObjects()
{
    for (const auto& object : objects_) {
        SetPort(port_.Get());
        object->Free();
    }
}

void Page::DrawPlaceholder(const Rect& area)
{
    port_.Fill(area, kPlaceholderFrame);
    const Rect inside = {static_cast<SInt16>(area.top + 1), static_cast<SInt16>(area.left + 1),
                         static_cast<SInt16>(area.bottom - 1), static_cast<SInt16>(area.right - 1)};
    port_.Fill(inside, kBackground);
}

} // namespace viewer

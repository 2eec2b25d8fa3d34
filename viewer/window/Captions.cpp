// SPDX-License-Identifier: MIT
#include "viewer/window/Captions.h"

#include "viewer/text/PageCanvas.h"
#include "viewer/window/ObjectState.h"

#include <algorithm>

namespace viewer
{
namespace
{

constexpr SInt16 kFocusWidth = 2;
constexpr SInt16 kFocusDistance = 4;
constexpr SInt16 kBarHeight = 4;
constexpr SInt16 kInset = 10;
constexpr int kNameHeight = 13;
constexpr int kDetailsHeight = 11;
constexpr int kLineHeight = 15;
constexpr size_t kMostProblemLines = 2; // of a caption
constexpr SInt32 kNameBaseline = 19;
constexpr SInt32 kDetailsBaseline = 34;

constexpr Ink kNameInk = {0x2B, 0x30, 0x38};
constexpr Ink kDetailsInk = {0x68, 0x70, 0x7C};
constexpr Ink kProblemInk = {0xA0, 0x3A, 0x32};
constexpr Ink kFocusInk = {0x4A, 0x7C, 0xBE};
constexpr Ink kBarInk = {0x6C, 0x98, 0xCE};
constexpr Ink kTroughInk = {0xE2, 0xE6, 0xEC};
constexpr Ink kPaper = {0xFC, 0xFC, 0xFD};
constexpr Ink kPaperEdge = {0xD4, 0xD8, 0xDE};

Rect Outset(const Rect& rect, int by)
{
    return {static_cast<SInt16>(rect.top - by), static_cast<SInt16>(rect.left - by),
            static_cast<SInt16>(rect.bottom + by), static_cast<SInt16>(rect.right + by)};
}

int WidthOf(const Rect& rect)
{
    return rect.right - rect.left;
}

} // namespace

void Captions::Update(const EmbeddedObject* focus)
{
    if (page_.CurrentShape().alone != nullptr) {
        return;
    }
    const auto& objects = page_.Objects();
    if (layout_ != page_.CountLayouts()) {
        layout_ = page_.CountLayouts();
        drawn_.assign(objects.size(), {});
    }
    for (size_t i = 0; i < objects.size(); ++i) {
        Caption caption = Describe(*objects[i], focus);
        if (!(caption == drawn_[i])) {
            Draw(caption, *objects[i]);
            drawn_[i] = std::move(caption);
        }
    }
}

Captions::Caption Captions::Describe(EmbeddedObject& object, const EmbeddedObject* focus)
{
    Caption caption;
    caption.name = NameToShow(object.Name(), object.FileName());
    caption.details = Join(DescribeState(object), WidthOf(object.CaptionArea()));
    caption.problem = object.Problem();
    caption.isFocused = &object == focus;
    caption.isPlaceholder = !object.HasDimensions();
    if (caption.isPlaceholder && caption.problem.empty()) {
        caption.arrived = PercentArrived(object).value_or(0);
    }
    return caption;
}

// As many of the last parts as there is room for, at least one.
std::string Captions::Join(const std::vector<std::string>& parts, int width)
{
    constexpr const char* kSeparator = " \u00B7 ";
    std::string text = parts.back();
    for (auto part = parts.rbegin() + 1; part != parts.rend(); ++part) {
        const std::string longer = *part + kSeparator + text;
        if (text_.WidthOf(longer, kDetailsHeight) > width) {
            break;
        }
        text = longer;
    }
    return text;
}

// In lines, of which the last tells if there would be more.
std::vector<std::string> Captions::Folded(const std::string& text, int width, size_t mostLines)
{
    std::vector<std::string> lines = text_.Wrapped(text, kDetailsHeight, width);
    if (lines.size() > mostLines) {
        const std::string rest = lines[mostLines - 1] + " " + lines[mostLines];
        lines.resize(mostLines);
        lines.back() = text_.Shortened(rest, kDetailsHeight, width);
    }
    return lines;
}

void Captions::Draw(const Caption& caption, const EmbeddedObject& object)
{
    DrawText(caption, object.CaptionArea());
    DrawFocus(caption, object.Area());
    if (caption.isPlaceholder) {
        DrawInside(caption, object.Area());
    }
}

void Captions::DrawText(const Caption& caption, const Rect& room)
{
    Rect place = room;
    place.top = static_cast<SInt16>(room.top + kFocusDistance + kFocusWidth);
    page_.Wipe(place);
    Canvas canvas = CanvasOn(page_, place);
    const int width = WidthOf(room);
    WriteLine(canvas, room, kNameBaseline, text_.Shortened(caption.name, kNameHeight, width),
              kNameHeight, kNameInk);
    const bool isProblem = !caption.problem.empty();
    SInt32 v = kDetailsBaseline;
    for (const std::string& line :
         Folded(caption.details, width, isProblem ? kMostProblemLines : 1)) {
        WriteLine(canvas, room, v, line, kDetailsHeight, isProblem ? kProblemInk : kDetailsInk);
        v += kLineHeight;
    }
}

// `v`: below the object. Where that stands in the page's middle, so does what is written.
void Captions::WriteLine(Canvas& canvas, const Rect& room, SInt32 v, const std::string& line,
                         int height, Ink ink)
{
    const SInt32 rest = WidthOf(room) - text_.WidthOf(line, height);
    const SInt32 left = room.left + (page_.HasObjectInMiddle() ? rest / 2 : 0);
    text_.Write(canvas, left, room.top + v, line, height, ink);
}

void Captions::DrawFocus(const Caption& caption, const Rect& area)
{
    const Rect frame = Outset(area, kFocusDistance);
    const UInt8 grey = page_.Style().background;
    CanvasOn(page_, frame)
        .Frame(frame, kFocusWidth, caption.isFocused ? kFocusInk : Ink{grey, grey, grey});
}

void Captions::DrawInside(const Caption& caption, const Rect& area)
{
    Canvas canvas = CanvasOn(page_, area);
    canvas.Fill(area, kPaper);
    canvas.Frame(area, 1, kPaperEdge);
    if (caption.arrived >= 0) {
        const auto bottom = static_cast<SInt16>(area.bottom - kInset);
        const auto left = static_cast<SInt16>(area.left + kInset);
        const Rect trough = {static_cast<SInt16>(bottom - kBarHeight), left, bottom,
                             static_cast<SInt16>(area.right - kInset)};
        Rect bar = trough;
        bar.right = static_cast<SInt16>(left + (trough.right - left) * caption.arrived / 100);
        canvas.Fill(trough, kTroughInk);
        canvas.Fill(bar, kBarInk);
    } else if (!caption.problem.empty()) {
        DrawProblem(caption, area, canvas);
    }
}

void Captions::DrawProblem(const Caption& caption, const Rect& area, Canvas& canvas)
{
    const SInt32 width = area.right - area.left - 2 * kInset;
    const SInt32 rows = area.bottom - area.top - 2 * kInset;
    const std::vector<std::string> lines =
        Folded(caption.problem, width, static_cast<size_t>(std::max(1, rows / kLineHeight)));
    const auto height = static_cast<SInt32>(lines.size()) * kLineHeight;
    SInt32 v = (area.top + area.bottom - height) / 2 + kDetailsHeight;
    for (const std::string& line : lines) {
        const SInt32 left = area.left + kInset + (width - text_.WidthOf(line, kDetailsHeight)) / 2;
        text_.Write(canvas, left, v, line, kDetailsHeight, kProblemInk);
        v += kLineHeight;
    }
}

} // namespace viewer

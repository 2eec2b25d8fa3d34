// SPDX-License-Identifier: MIT
#include "viewer/Layout.h"

#include "src/plugin/VornPluginABI.h"

#include <algorithm>
#include <cmath>

namespace viewer
{
namespace
{

SInt16 ToCoordinate(SInt32 value)
{
    return static_cast<SInt16>(std::clamp<SInt32>(value, INT16_MIN, INT16_MAX));
}

// Puts one thing behind the other.
class Rows
{
public:
    Rows(SInt16 pageWidth, const PageStyle& style)
        : pageWidth_(pageWidth), style_(style), left_(style.margin), top_(style.margin)
    {
    }

    Rect PlaceObject(const AreaSize& area)
    {
        const SInt32 width = std::max(area.width, style_.leastWidth);
        if (left_ > style_.margin && left_ + width > pageWidth_ - style_.margin) {
            EndRow();
        }
        if (isBehindParagraph_) {
            GoDown(style_.gap);
            isBehindParagraph_ = false;
        }
        const Rect rect = {ToCoordinate(top_), ToCoordinate(left_),
                           ToCoordinate(top_ + area.height), ToCoordinate(left_ + area.width)};
        left_ += width + style_.gap;
        rowHeight_ = std::max<SInt32>(rowHeight_, area.height);
        return rect;
    }

    Rect PlaceParagraph(SInt32 height)
    {
        if (left_ > style_.margin) {
            EndRow();
        }
        if (isBehindParagraph_) {
            GoDown(style_.paragraphGap);
        }
        const SInt32 top = top_;
        GoDown(height);
        isBehindParagraph_ = true;
        const SInt32 right = std::max<SInt32>(pageWidth_ - style_.margin, style_.margin);
        return {ToCoordinate(top), style_.margin, ToCoordinate(top_), ToCoordinate(right)};
    }

private:
    void EndRow()
    {
        left_ = style_.margin;
        GoDown(rowHeight_ + style_.captionHeight + style_.gap);
        rowHeight_ = 0;
    }

    void GoDown(SInt32 by) { top_ = std::min(top_ + by, SInt32{INT16_MAX}); }

    SInt16 pageWidth_;
    const PageStyle& style_;
    SInt32 left_;
    SInt32 top_;
    SInt32 rowHeight_ = 0;
    bool isBehindParagraph_ = false;
};

Rect CaptionBelow(const Rect& area, SInt32 left, SInt32 right, const PageStyle& style)
{
    return {area.bottom, ToCoordinate(left),
            ToCoordinate(area.bottom + style.captionHeight + style.captionExcess),
            ToCoordinate(right)};
}

// Each goes on to the next object's, or to the page's edge.
std::vector<Rect> CaptionsInRows(const std::vector<Rect>& objects, SInt16 pageWidth,
                                 const PageStyle& style)
{
    std::vector<Rect> captions;
    for (size_t i = 0; i < objects.size(); ++i) {
        const Rect& area = objects[i];
        const bool hasNeighbour = i + 1 < objects.size() && objects[i + 1].top == area.top &&
                                  objects[i + 1].left > area.left;
        const SInt32 right = hasNeighbour
                                 ? objects[i + 1].left - style.gap
                                 : std::max(pageWidth - style.margin, area.left + style.leastWidth);
        captions.push_back(CaptionBelow(area, area.left, right, style));
    }
    return captions;
}

} // namespace

PageStyle StyleWithText()
{
    PageStyle style;
    style.margin = 16;
    style.gap = 20;
    style.captionHeight = 40;
    style.leastWidth = 176;
    style.background = 0xF4;
    style.paragraphGap = 10;
    style.captionExcess = 12;
    return style;
}

PagePlaces LayOutRows(const std::vector<AreaSize>& areas, SInt16 pageWidth, const PageStyle& style,
                      const std::vector<ParagraphSpace>& paragraphs)
{
    Rows rows(pageWidth, style);
    PagePlaces places;
    auto paragraph = paragraphs.begin();
    const auto placeParagraphs = [&] {
        while (paragraph != paragraphs.end() && paragraph->objectsBefore <= places.objects.size()) {
            places.paragraphs.push_back(rows.PlaceParagraph(paragraph++->height));
        }
    };
    for (const AreaSize& area : areas) {
        placeParagraphs();
        places.objects.push_back(rows.PlaceObject(area));
    }
    placeParagraphs();
    places.captions = CaptionsInRows(places.objects, pageWidth, style);
    return places;
}

PagePlaces LayOutInMiddle(AreaSize area, AreaSize page, const PageStyle& style)
{
    const int left = std::max<int>(style.margin, (page.width - area.width) / 2);
    const int top =
        std::max<int>(style.margin, (page.height - area.height - style.captionHeight) / 2);
    const Rect place = {ToCoordinate(top), ToCoordinate(left), ToCoordinate(top + area.height),
                        ToCoordinate(left + area.width)};
    return {{place}, {CaptionBelow(place, style.margin, page.width - style.margin, style)}, {}};
}

AreaSize RoomForOne(AreaSize page, const PageStyle& style)
{
    const auto room = [](int length) { return ToCoordinate(std::max(1, length)); };
    return {room(page.width - 2 * style.margin),
            room(page.height - 2 * style.margin - style.captionHeight)};
}

double ZoomToFit(AreaSize picture, AreaSize room)
{
    const auto fit = [](SInt16 length, SInt16 most) {
        return static_cast<double>(std::max<SInt16>(1, most)) / std::max<SInt16>(1, length);
    };
    return std::min(fit(picture.width, room.width), fit(picture.height, room.height));
}

AreaSize AreaForPicture(AreaSize natural, UInt32 displayFlags, SInt16 pageWidth)
{
    if (natural.width <= pageWidth || (displayFlags & kVornDisplayScale) == 0) {
        return natural;
    }
    if ((displayFlags & kVornDisplayKeepAspect) == 0) {
        return {pageWidth, natural.height};
    }
    // A picture of one row stays one.
    return {pageWidth, ToCoordinate(std::max(natural.height * pageWidth / natural.width, 1))};
}

AreaSize Zoomed(AreaSize natural, double zoom)
{
    const auto zoomed = [zoom](SInt16 length) {
        return static_cast<SInt16>(std::clamp(std::round(length * zoom), 1.0, 32767.0));
    };
    return {zoomed(natural.width), zoomed(natural.height)};
}

AreaSize WithRows(AreaSize size, SInt16 rows)
{
    return {size.width, ToCoordinate(size.height + rows)};
}

} // namespace viewer

// SPDX-License-Identifier: MIT
//
// Where the objects of a page stand.
#pragma once

#include "toolbox/Types.h"

#include <vector>

namespace viewer
{

struct AreaSize {
    SInt16 width = 0;
    SInt16 height = 0;
};

// The space between neighbours in a row, and between rows, in pixels.
inline constexpr SInt16 kObjectGap = 8;

// What a movie's size holds for its controller: a bar and a spare row below it. A sound has nothing
// else.
inline constexpr SInt16 kControllerBarHeight = 16;
inline constexpr SInt16 kControllerSpareRows = 1;
inline constexpr SInt16 kControllerRows = kControllerBarHeight + kControllerSpareRows;

// What a page leaves free around what stands on it, and its colour.
struct PageStyle {
    SInt16 margin = 0; // at the page's edges
    SInt16 gap = kObjectGap;
    SInt16 captionHeight = 0; // below each object
    SInt16 leastWidth = 0;    // of an object with its caption
    UInt8 background = 0xFF;  // a grey
    SInt16 paragraphGap = 0;  // between paragraphs
    SInt16 captionExcess = 0; // what a long caption takes of the space below it
};

// How a page looks with paragraphs, or with captions below its objects.
PageStyle StyleWithText();

// A paragraph's room: all of the page's width.
struct ParagraphSpace {
    size_t objectsBefore = 0; // how many of the page's objects stand before it
    SInt32 height = 0;
};

// In the order in which they were given.
struct PagePlaces {
    std::vector<Rect> objects;
    std::vector<Rect> captions; // as wide as what stands beside them lets them be
    std::vector<Rect> paragraphs;
};

// Puts areas in rows from left to right, each row as high as its highest area, starting a new row
// where the page's width is used up. A paragraph stands between two rows. What would lie beyond the
// last coordinate is cut off there.
PagePlaces LayOutRows(const std::vector<AreaSize>& areas, SInt16 pageWidth,
                      const PageStyle& style = {},
                      const std::vector<ParagraphSpace>& paragraphs = {});

// Puts the only area into the page's middle; what is larger than the page begins at its edges. The
// caption is as wide as the page.
PagePlaces LayOutInMiddle(AreaSize area, AreaSize page, const PageStyle& style);
// What a page of that size has for its only object.
AreaSize RoomForOne(AreaSize page, const PageStyle& style);
// How much a picture is enlarged or reduced to be as large as the room lets it be.
double ZoomToFit(AreaSize picture, AreaSize room);

// The area that a picture of that size gets: its own size, or less if it is wider than the page
// and its display flags let it shrink (kVornDisplayScale), then in proportion if they say so
// (kVornDisplayKeepAspect).
AreaSize AreaForPicture(AreaSize natural, UInt32 displayFlags, SInt16 pageWidth);
// The size that it has on a page that is shown enlarged or reduced.
AreaSize Zoomed(AreaSize natural, double zoom);
// A size with so many rows more, or less: what is as high at any size, such as a movie's
// controller.
AreaSize WithRows(AreaSize size, SInt16 rows);

} // namespace viewer

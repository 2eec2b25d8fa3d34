// SPDX-License-Identifier: MIT
//
// The paragraphs of a page, and where they stand.
#pragma once

#include "viewer/Layout.h"
#include "viewer/TextBlock.h"

#include <functional>
#include <utility>
#include <vector>

namespace viewer
{

// Whoever shows the page writes them; where nobody does, they take no room.
class PageTexts
{
public:
    // How high a paragraph is that may be so wide on a page that is enlarged so much.
    using Measure = std::function<SInt32(size_t index, SInt16 width, double zoom)>;

    void SetMeasure(Measure measure) { measure_ = std::move(measure); }
    void Add(TextBlock block) { blocks_.push_back(std::move(block)); }
    // The object at that place goes, and so many others come, with paragraphs that count from
    // there.
    void ReplaceObject(size_t place, size_t objects, std::vector<TextBlock> blocks);
    // In reading order.
    const std::vector<TextBlock>& Blocks() const { return blocks_; }

    std::vector<ParagraphSpace> Spaces(SInt16 width, double zoom) const;
    // Gives the paragraphs places, none to those behind the last one. Answers where those stood
    // that have moved.
    std::vector<Rect> Move(const std::vector<Rect>& areas);
    // The page has been wiped.
    void Forget();
    const Rect& Area(size_t index) const { return places_[index].area; }
    // Where the lowest of those with a place ends.
    SInt16 Bottom() const;
    // Those that have come to another place since the last call.
    std::vector<size_t> TakeMoved();

private:
    struct Place {
        Rect area{};
        bool hasMoved = false;
    };
    std::vector<TextBlock> blocks_;
    std::vector<Place> places_;
    Measure measure_;
};

} // namespace viewer

// SPDX-License-Identifier: MIT
#include "viewer/PageTexts.h"

#include "toolbox/quickdraw/QuickDraw.h"
#include "viewer/Rects.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace viewer
{

void PageTexts::ReplaceObject(size_t place, size_t objects, std::vector<TextBlock> blocks)
{
    const auto behind = std::find_if(blocks_.begin(), blocks_.end(), [&](const TextBlock& each) {
        return each.objectsBefore > place;
    });
    std::for_each(behind, blocks_.end(),
                  [&](TextBlock& each) { each.objectsBefore += objects - 1; });
    std::for_each(blocks.begin(), blocks.end(),
                  [&](TextBlock& each) { each.objectsBefore += place; });
    places_.resize(blocks_.size());
    places_.insert(places_.begin() + (behind - blocks_.begin()), blocks.size(), {});
    blocks_.insert(behind, std::make_move_iterator(blocks.begin()),
                   std::make_move_iterator(blocks.end()));
}

std::vector<ParagraphSpace> PageTexts::Spaces(SInt16 width, double zoom) const
{
    std::vector<ParagraphSpace> spaces;
    for (size_t i = 0; measure_ && i < blocks_.size(); ++i) {
        spaces.push_back({blocks_[i].objectsBefore, measure_(i, width, zoom)});
    }
    return spaces;
}

std::vector<Rect> PageTexts::Move(const std::vector<Rect>& areas)
{
    std::vector<Rect> left;
    places_.resize(blocks_.size());
    for (size_t i = 0; i < places_.size(); ++i) {
        const Rect area = i < areas.size() ? areas[i] : Rect{};
        Place& place = places_[i];
        if (EqualRect(&place.area, &area) != 0) {
            continue;
        }
        if (!IsEmpty(place.area)) {
            left.push_back(place.area);
        }
        place = {area, !IsEmpty(area)};
    }
    return left;
}

void PageTexts::Forget()
{
    places_.assign(blocks_.size(), {});
}

SInt16 PageTexts::Bottom() const
{
    SInt16 bottom = 0;
    for (const Place& place : places_) {
        bottom = std::max(bottom, place.area.bottom);
    }
    return bottom;
}

std::vector<size_t> PageTexts::TakeMoved()
{
    std::vector<size_t> moved;
    for (size_t i = 0; i < places_.size(); ++i) {
        if (std::exchange(places_[i].hasMoved, false)) {
            moved.push_back(i);
        }
    }
    return moved;
}

} // namespace viewer

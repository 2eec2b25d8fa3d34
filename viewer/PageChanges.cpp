// SPDX-License-Identifier: MIT
#include "viewer/PageChanges.h"

#include "viewer/Rects.h"

#include <utility>

namespace viewer
{
namespace
{

// Nobody may ever look.
constexpr size_t kMostRects = 64;

} // namespace

void PageChanges::Add(const Rect& rect)
{
    if (IsEmpty(rect) || std::any_of(rects_.begin(), rects_.end(),
                                     [&](const Rect& each) { return Contains(each, rect); })) {
        return;
    }
    rects_.push_back(rect);
    if (rects_.size() > kMostRects) {
        Rect all = rects_.front();
        for (const Rect& each : rects_) {
            all = Union(all, each);
        }
        rects_ = {all};
    }
}

std::vector<Rect> PageChanges::Take()
{
    return std::exchange(rects_, {});
}

} // namespace viewer

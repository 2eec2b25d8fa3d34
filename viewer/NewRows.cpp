// SPDX-License-Identifier: MIT
#include "viewer/NewRows.h"

#include <algorithm>

namespace viewer
{

void NewRows::Add(SInt16 first, SInt16 end)
{
    if (band_) {
        first = std::min(first, band_->first);
        end = std::max(end, band_->end);
    }
    band_ = Band{first, end};
}

std::optional<Rect> NewRows::TakeWithin(const Rect& drawn, SInt16 pictureHeight)
{
    if (!band_ || pictureHeight <= 0) {
        return std::nullopt;
    }
    const SInt32 height = drawn.bottom - drawn.top;
    const SInt32 first = std::max(band_->first * height / pictureHeight, 0);
    const SInt32 end = std::min((band_->end * height + pictureHeight - 1) / pictureHeight, height);
    band_.reset();
    return Rect{static_cast<SInt16>(drawn.top + first), drawn.left,
                static_cast<SInt16>(drawn.top + end), drawn.right};
}

} // namespace viewer

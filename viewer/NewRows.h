// SPDX-License-Identifier: MIT
//
// Rows of an image that were decoded but not drawn yet.
#pragma once

#include "toolbox/Types.h"

#include <optional>

namespace viewer
{

class NewRows
{
public:
    // Rows of the image's own picture, from `first` up to `end`.
    void Add(SInt16 first, SInt16 end);
    void Forget() { band_.reset(); }
    // Where the rows lie if the picture of that height is drawn in `drawn`, and forgets them.
    std::optional<Rect> TakeWithin(const Rect& drawn, SInt16 pictureHeight);
    bool IsEmpty() const { return !band_; }

private:
    struct Band {
        SInt16 first;
        SInt16 end;
    };
    std::optional<Band> band_;
};

} // namespace viewer

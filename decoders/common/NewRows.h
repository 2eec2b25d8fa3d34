// SPDX-License-Identifier: MIT
#pragma once

#include "src/image/ImageFunctions.h"

#include <algorithm>

// The rows of an image's first frame that have been decoded and not been told of.
class NewRows
{
public:
    explicit NewRows(VornPlugin& image) : image_(image) {}

    // Calls nobody, so it may be called under a library's frames.
    void Note(SInt32 row) noexcept
    {
        first_ = first_ < end_ ? std::min(first_, row) : row;
        end_ = std::max(end_, row + 1);
    }
    // Tells image and host of the band that they are in, if there are any. Only outside a library's
    // frames: the host may do as it likes.
    void Tell()
    {
        const auto first = static_cast<SInt16>(first_);
        const auto end = static_cast<SInt16>(end_);
        first_ = end_ = 0;
        if (first == end)
            return;
        InvalImageRow(&image_, first);
        InvalImageRow(&image_, static_cast<SInt16>(end - 1));
        CallPluginHostDecodedChunk(&image_, first, end);
    }

private:
    VornPlugin& image_;
    SInt32 first_ = 0;
    SInt32 end_ = 0; // 0: none
};
